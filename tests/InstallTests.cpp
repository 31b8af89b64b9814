#include <QtCore>
#include <QtGui>
#include <gmock/gmock.h>

namespace {

using namespace Qt::StringLiterals;
using ::testing::HasSubstr;

struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

Outcome run(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60'000)) {
        process.kill();
        process.waitForFinished();
        return {-1, {}, process.errorString().toStdString()};
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput().toStdString(), process.readAllStandardError().toStdString()};
}

/// One installation for all of the tests.
class InstallTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        prefix = new QTemporaryDir(QDir::tempPath() + u"/v-XXXXXX"_s);
        installation = run(u"" VANTREL_CMAKE ""_s,
                           {u"--install"_s, u"" VANTREL_BUILD_DIRECTORY ""_s, u"--prefix"_s, prefix->path()});
    }
    static void TearDownTestSuite() { delete prefix; }

    void SetUp() override { ASSERT_EQ(installation.status, 0) << installation.errors; }

    static QString installed(const char *path) { return prefix->filePath(QString::fromLatin1(path)); }

    static inline QTemporaryDir *prefix = nullptr;
    static inline Outcome installation;
};

TEST_F(InstallTests, isComplete) {
    QStringList files;
    QDirIterator each(prefix->path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (each.hasNext())
        files.append(QDir(prefix->path()).relativeFilePath(each.next()));
    files.removeAll(u"share/vantrel/platform-tools/adb"_s); // a choice of the build
    files.sort();

    QStringList expected{u"bin/vantrel"_s,
                         u"lib/vantrel/vantrel-embedded-pictures.so"_s,
                         u"share/applications/com.vantrelapp.Vantrel.desktop"_s,
                         u"share/doc/vantrel/changelog.Debian.gz"_s,
                         u"share/doc/vantrel/copyright"_s,
                         u"share/icons/hicolor/scalable/apps/com.vantrelapp.Vantrel.svg"_s,
                         u"share/man/man1/vantrel.1.gz"_s,
                         u"share/metainfo/com.vantrelapp.Vantrel.metainfo.xml"_s,
                         u"share/vantrel/udev/51-vantrel-android.rules"_s};
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const QString icon = u"share/icons/hicolor/%1x%1/apps/com.vantrelapp.Vantrel.png"_s.arg(size);
        expected.append(icon);
        const QImage image(prefix->filePath(icon));
        EXPECT_EQ(image.size(), QSize(size, size)) << icon.toStdString();
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << "the corners are clear";
        EXPECT_GT(qAlpha(image.pixel(size / 2, size / 2)), 200) << "something is drawn";
    }
    expected.sort();
    EXPECT_EQ(files, expected) << files.join(u'\n').toStdString();
}

TEST_F(InstallTests, satisfiesTheDesktopsValidators) {
    for (const QStringList &check :
         {QStringList{u"desktop-file-validate"_s,
                      installed("share/applications/com.vantrelapp.Vantrel.desktop")},
          {u"appstreamcli"_s, u"validate"_s, u"--no-net"_s,
           installed("share/metainfo/com.vantrelapp.Vantrel.metainfo.xml")}}) {
        const QString program = QStandardPaths::findExecutable(check.first());
        ASSERT_FALSE(program.isEmpty()) << check.first().toStdString() << " is not installed";
        const Outcome outcome = run(program, check.mid(1));
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_THAT(outcome.output,
                    ::testing::Not(::testing::ContainsRegex("(error|warning|hint|^[EWI]): ")));
    }
}

TEST_F(InstallTests, holdsNoPathOfTheMachineThatBuiltIt) {
    const auto check = [](const char *folder) {
        return run(u"" VANTREL_SOURCE_DIRECTORY "/scripts/holds-no-paths"_s,
                   {installed(folder), u"" VANTREL_BUILD_DIRECTORY ""_s, u"" VANTREL_SOURCE_DIRECTORY ""_s});
    };
    const Outcome data = check("share");
    EXPECT_EQ(data.status, 0) << data.output << data.errors;
    // Of the program and its module the promise holds once it is built for others: a development build looks
    // into its source tree, and shows that the check would notice.
    const Outcome program = check("bin");
    EXPECT_EQ(program.status, VANTREL_IS_DEVELOPMENT ? 1 : 0) << program.output << program.errors;
    if (VANTREL_IS_DEVELOPMENT) {
        EXPECT_THAT(program.output, HasSubstr("bin/vantrel holds "));
    } else {
        const Outcome module = check("lib");
        EXPECT_EQ(module.status, 0) << module.output << module.errors;
    }
}

TEST_F(InstallTests, answersWithoutADisplay) {
    const auto start = [](const QString &argument) {
        return run(u"env"_s, {u"--unset=DISPLAY"_s, u"--unset=WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM=xcb"_s,
                              installed("bin/vantrel"), argument});
    };
    const Outcome version = start(u"--version"_s);
    EXPECT_EQ(version.status, 0) << version.errors;
    EXPECT_EQ(version.output, "Vantrel " VANTREL_VERSION "\n");
    EXPECT_EQ(start(u"--help"_s).status, 0);
    const Outcome refused = run(installed("bin/vantrel"), {u"--bogus"_s});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("Unknown option 'bogus'."));
}

} // namespace
