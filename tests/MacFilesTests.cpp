#include "support/FakeDesktop.h"
#include "support/Files.h"
#include "support/Printers.h"

#include "MacFiles/MacFileClient.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace vantrel;

TEST(MacFilePaths, areStandardized) {
    const QString home = QDir::homePath();
    const struct {
        QString path;
        QString standardized;
        QString parent;
    } cases[] = {
        {QStringLiteral("/"), QStringLiteral("/"), QStringLiteral("/")},
        {QStringLiteral("/a"), QStringLiteral("/a"), QStringLiteral("/")},
        {QStringLiteral("/a//b/./c/"), QStringLiteral("/a/b/c"), QStringLiteral("/a/b")},
        {QStringLiteral("~/Documents/../Desktop"), home + QStringLiteral("/Desktop"), home},
        {QStringLiteral("~"), home, QFileInfo(home).path()},
        {QStringLiteral("~other/x"), QStringLiteral("~other/x"), QStringLiteral("~other")},
        {QStringLiteral("/../.."), QStringLiteral("/"), QStringLiteral("/")},
        {QStringLiteral("relative"), QStringLiteral("relative"), QStringLiteral("relative")},
        {QString(), QString(), QString()},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(MacFileClient::standardizedPath(c.path), c.standardized);
        EXPECT_EQ(MacFileClient::parentPath(c.path), c.parent) << c.path.toStdString();
    }
}

TEST(MacFileListing, visibleEntriesByTheirOwnProperties) {
    QTemporaryDir folder;
    QDir directory(folder.path());
    write(folder.filePath(QStringLiteral("zeta.txt")), "12345");
    write(folder.filePath(QStringLiteral("beta.txt")), "");
    write(folder.filePath(QStringLiteral(".hidden")), "x");
    directory.mkdir(QStringLiteral("Gamma"));
    directory.mkdir(QStringLiteral("Alpha"));
    directory.mkdir(QStringLiteral(".cache"));
    ASSERT_EQ(::symlink("Gamma", QFile::encodeName(folder.filePath(QStringLiteral("link"))).constData()), 0);
    ASSERT_EQ(
        ::symlink("nowhere", QFile::encodeName(folder.filePath(QStringLiteral("dangling"))).constData()), 0);

    const auto items = MacFileClient::listDirectory(folder.path() + QStringLiteral("/."));
    ASSERT_TRUE(items.has_value());
    QStringList described;
    for (const FileItem &item : *items)
        described.append(item.name + QLatin1Char(item.isDirectory ? '/' : ' ') +
                         QString::number(item.sizeBytes.value_or(-1)));
    EXPECT_EQ(described.join(QLatin1Char(',')),
              QStringLiteral("Alpha/-1,Gamma/-1,beta.txt 0,dangling 7,link 5,zeta.txt 5"));
    EXPECT_EQ(items->last().path, folder.filePath(QStringLiteral("zeta.txt")));

    const QDateTime time(QDate(2024, 5, 1), QTime(12, 51, 30, 987));
    QFile zeta(items->last().path);
    ASSERT_TRUE(zeta.open(QIODevice::ReadWrite) && zeta.setFileTime(time, QFileDevice::FileModificationTime));
    const timespec early[] = {{-2, 250'000'000}, {-2, 250'000'000}}; // 1.75 seconds before 1970
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(items->at(2).path).constData(), early, 0), 0);
    const auto dated = MacFileClient::listDirectory(folder.path());
    EXPECT_EQ(dated->last().modifiedAt, time) << "to the millisecond";
    EXPECT_EQ(dated->at(2).modifiedAt->toMSecsSinceEpoch(), -1750);
}

TEST(MacFileListing, failsInWords) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("file"));
    write(file, "x");
    const auto error = [](const QString &path) {
        return MacFileClient::listDirectory(path).error().errorDescription();
    };
    EXPECT_EQ(error(folder.path() + QStringLiteral("/gone/")),
              QStringLiteral("Folder not found: ") + folder.filePath(QStringLiteral("gone")));
    EXPECT_EQ(error(file), QStringLiteral("Not a folder: ") + file);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto unread = MacFileClient::listDirectory(folder.path());
    ::setrlimit(RLIMIT_NOFILE, &before);
    ASSERT_FALSE(unread.has_value());
    EXPECT_EQ(unread.error().errorDescription(), QStringLiteral("Too many open files"));
    const QString locked = folder.filePath(QStringLiteral("locked"));
    QDir().mkdir(locked);
    QFile::setPermissions(locked, QFileDevice::Permissions());
    if (::geteuid() != 0) { // the superuser may read it all the same
        EXPECT_EQ(error(locked), QStringLiteral("Permission denied"));
    }
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

TEST(MacFiles, foldersAreCreatedAndNothingIsTouched) {
    QTemporaryDir folder;
    const auto created =
        MacFileClient::createFolder(QStringLiteral("New Folder"), folder.path() + QLatin1Char('/'));
    EXPECT_EQ(created, folder.filePath(QStringLiteral("New Folder")));
    EXPECT_TRUE(QFileInfo(*created).isDir());
    write(*created + QStringLiteral("/kept"), "x");
    EXPECT_EQ(MacFileClient::createFolder(QStringLiteral("New Folder"), folder.path()).error(),
              QStringLiteral("File exists"));
    EXPECT_TRUE(QFile::exists(*created + QStringLiteral("/kept")));
    EXPECT_EQ(
        MacFileClient::createFolder(QStringLiteral("a"), folder.filePath(QStringLiteral("gone"))).error(),
        QStringLiteral("No such file or directory"));
}

TEST(MacFiles, aFoldersNameIsOneComponent) {
    QTemporaryDir folder;
    const QString parent = folder.filePath(QStringLiteral("parent"));
    ASSERT_TRUE(QDir().mkpath(parent + QStringLiteral("/a")));
    const QString slash = QStringLiteral("A folder’s name can’t contain “/”.");
    const QString noName = QStringLiteral("This can’t be a folder’s name. Choose another one.");
    const QString tooLong = QStringLiteral("This name is too long for a folder here. Choose a shorter one.");
    const struct {
        QString name;
        QString reason;
    } cases[] = {
        {QStringLiteral("a/b"), slash},
        {QStringLiteral("../x"), slash},
        {folder.filePath(QStringLiteral("absolute")), slash},
        {QStringLiteral("x/"), slash},
        {QString(), noName},
        {QStringLiteral("."), noName},
        {QStringLiteral(".."), noName},
        {QStringLiteral("nul%1x").arg(QChar(u'\0')), noName},
        {QString(256, QLatin1Char('n')), tooLong},
        {QString(128, QChar(0xfc)), tooLong},
    };
    for (const auto &c : cases) {
        const auto created = MacFileClient::createFolder(c.name, parent);
        EXPECT_EQ(created ? QStringLiteral("(created)") : created.error(), c.reason) << c.name.toStdString();
    }
    QStringList names;
    QDirIterator all(folder.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        names.append(QDir(folder.path()).relativeFilePath(all.next()));
    names.sort();
    EXPECT_EQ(names, (QStringList{QStringLiteral("parent"), QStringLiteral("parent/a")}));
    for (const QString &name : {QString(255, QLatin1Char('n')), QStringLiteral("..."), QStringLiteral("a b "),
                                QStringLiteral("~"), QStringLiteral("~root")})
        EXPECT_EQ(MacFileClient::createFolder(name, parent).value_or(QString()),
                  parent + QLatin1Char('/') + name);
}

TEST(MacFiles, existenceAndFreeSpace) {
    QTemporaryDir folder;
    const QString link = folder.filePath(QStringLiteral("dangling"));
    ASSERT_EQ(::symlink("nowhere", QFile::encodeName(link).constData()), 0);
    EXPECT_TRUE(MacFileClient::exists(folder.path()));
    EXPECT_TRUE(MacFileClient::exists(link)) << "writing there would replace the link's target";
    EXPECT_FALSE(MacFileClient::exists(folder.filePath(QStringLiteral("gone"))));
    EXPECT_GT(MacFileClient::availableBytes(folder.path()).value_or(0), 0);
    EXPECT_EQ(MacFileClient::availableBytes(QStringLiteral("/nowhere/at/all")), std::nullopt);
}

TEST(MacFiles, theDesktopGetsStandardizedPaths) {
    FakeDesktop desktop;
    MacFileClient::open(desktop, QStringLiteral("~/a/"));
    MacFileClient::revealInFinder(desktop, QStringLiteral("/x/../y"));
    MacFileClient::copyPath(desktop, QStringLiteral("/x//y"));
    EXPECT_EQ(desktop.opened, QStringList{QDir::homePath() + QStringLiteral("/a")});
    EXPECT_EQ(desktop.revealed, QStringList{QStringLiteral("/y")});
    EXPECT_EQ(desktop.copied, QStringList{QStringLiteral("/x/y")});
    EXPECT_EQ(MacFileClient::chooseFolder(desktop, QStringLiteral("/x/")).result(), std::nullopt);
    desktop.nextFolder = QStringLiteral("/chosen");
    EXPECT_EQ(MacFileClient::chooseFolder(desktop, QString()).result(), QStringLiteral("/chosen"));
    EXPECT_EQ(desktop.folderQuestions, (QStringList{QStringLiteral("Choose a Mac folder|Choose|/x"),
                                                    QStringLiteral("Choose a Mac folder|Choose|")}));
}
