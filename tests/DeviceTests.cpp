// On a real phone through the real adb, in a folder of its own that it clears: ./test --device SERIAL. Not
// part of the usual run, which has no phone.

#include "support/Files.h"
#include "support/Printers.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "ADB/PhoneCopies.h"

#include <QtCore>
#include <gtest/gtest.h>

#include <mutex>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

QString serial() {
    return qEnvironmentVariable("VANTREL_DEVICE");
}

QByteArray pattern(qsizetype size) {
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 253);
    return bytes;
}

class DeviceTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const auto serials = ADBClient::listDeviceSerials();
        ASSERT_TRUE(serials && serials->contains(serial()))
            << "adb does not list " << serial().toStdString() << " as a device";
        clear();
    }
    static void TearDownTestSuite() { clear(); }

    /// Only ever this folder, whose name is a constant.
    static void clear() {
        const auto cleared = ADBClient::runADB({u"-s"_s, serial(), u"shell"_s, u"rm"_s, u"-rf"_s, folder()});
        ASSERT_TRUE(cleared) << cleared.error().errorDescription().toStdString();
    }
    static QString folder() { return u"/sdcard/Download/vantrel-device-test"_s; }

    /// Copies; gives "" or why it failed.
    QString push(const QString &name, const QString &remote) {
        return run(u"push"_s, local.filePath(name), remote, std::nullopt);
    }
    QString pull(const QString &remote, const QString &name) {
        return run(u"pull"_s, remote, local.filePath(name), local.filePath(name));
    }
    QString run(const QString &verb, const QString &from, const QString &to,
                const std::optional<QString> &polled) {
        fractions.clear();
        const auto result = ADBClient::runTransfer({u"-s"_s, serial(), verb, from, to}, expectedBytes, polled,
                                                   [this](double fraction, qint64, qint64) {
                                                       const std::scoped_lock lock(mutex);
                                                       fractions.push_back(fraction);
                                                   });
        return result ? QString() : result.error().errorDescription();
    }

    QTemporaryDir local;
    qint64 expectedBytes = 0;
    std::vector<double> fractions;
    std::mutex mutex;
};

} // namespace

TEST_F(DeviceTest, isFoundWithNameAndStorage) {
    const auto device = ADBClient::fetchPrimaryDevice();
    ASSERT_TRUE(device) << device.error().errorDescription().toStdString();
    EXPECT_FALSE(device->name.isEmpty());
    EXPECT_GT(device->totalBytes, device->usedBytes);
    EXPECT_GT(device->usedBytes, 0);
}

TEST_F(DeviceTest, hostileNamesGoThereAndComeBack) {
    const QStringList names =
        QString(
            u"plain.txt|two words.txt|it's.txt|$(touch pwned).txt|`touch pwned`|a;b&c.txt|-rf|'; touch "
            u"pwned; '|"
            "grüße 😀.txt|a b|a  b| lead|trail |a\u00a0b|line\nbreak|tab\there|a -> b|back\\slash|ls\u2028ps|"
            "\u3000wide\u3000|"_s +
            QString(251, u'n') + u".txt"_s)
            .split(u'|');
    const QString remote = folder() + u"/names"_s;
    for (const QString &name : names) {
        write(local.filePath(name), name.toUtf8());
        ASSERT_EQ(push(name, AndroidPath::join(remote, name)), QString()) << name.toStdString();
    }
    const auto listing = ADBClient::listDirectory(serial(), remote);
    ASSERT_TRUE(listing) << listing.error().errorDescription().toStdString();
    QStringList expected = names;
    QStringList found = namesOf(*listing);
    expected.sort();
    found.sort();
    EXPECT_EQ(found, expected);
    EXPECT_EQ(listing->unreadableCount, 0);
    for (const FileItem &item : *listing) {
        EXPECT_EQ(item.sizeBytes, item.name.toUtf8().size());
        EXPECT_EQ(pull(item.path, u"back"_s), QString());
        EXPECT_EQ(contents(local.filePath(u"back"_s)), item.name.toUtf8());
        QFile::remove(local.filePath(u"back"_s));
    }
    const auto facts = ADBClient::fetchFacts(
        serial(), {remote + u"/it's.txt"_s, remote + u"/pwned"_s, u"/sdcard/pwned"_s, u"/pwned"_s}, {});
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->keys(), QStringList{remote + u"/it's.txt"_s});
    const auto hits = ADBClient::search(serial(), folder(), u"GRÜSSE' 😀*"_s, 200);
    EXPECT_TRUE(hits && hits->isEmpty());
    const auto found2 = ADBClient::search(serial(), folder(), u"TWO words'"_s, 200);
    ASSERT_TRUE(found2);
    ASSERT_EQ(found2->size(), 1);
    EXPECT_EQ(found2->first().sizeBytes, 13);
    EXPECT_EQ(namesOf(*ADBClient::search(serial(), remote, u"break"_s, 200)), QStringList{u"line\nbreak"_s});
    EXPECT_LE(std::abs(found2->first().modifiedAt->secsTo(QDateTime::currentDateTime())), 86'400);
}

TEST_F(DeviceTest, foldersArriveWholeBothWays) {
    const QByteArray bytes = pattern(300'000);
    for (const char *name : {"tree/a.bin", "tree/sub/b.bin", "tree/sub/deeper/c.bin"})
        write(local.filePath(QString::fromLatin1(name)), bytes);
    ASSERT_EQ(push(u"tree"_s, folder() + u"/tree"_s), QString());
    EXPECT_EQ(namesOf(*ADBClient::listDirectory(serial(), folder() + u"/tree"_s)),
              (QStringList{u"sub"_s, u"a.bin"_s}));
    ASSERT_EQ(pull(folder() + u"/tree"_s, u"copy"_s), QString());
    for (const char *name : {"copy/a.bin", "copy/sub/b.bin", "copy/sub/deeper/c.bin"})
        EXPECT_EQ(contents(local.filePath(QString::fromLatin1(name))), bytes) << name;
}

TEST_F(DeviceTest, aLongCopyShowsItsProgressEachWay) {
    const QByteArray bytes = pattern(60'000'000);
    expectedBytes = bytes.size();
    write(local.filePath(u"long.bin"_s), bytes);
    ASSERT_EQ(push(u"long.bin"_s, folder() + u"/long.bin"_s), QString());
    EXPECT_GE(fractions.size(), 6U);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    std::cout << "push: " << fractions.size() << " steps of progress\n";
    ASSERT_EQ(pull(folder() + u"/long.bin"_s, u"back.bin"_s), QString());
    EXPECT_GE(fractions.size(), 6U);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    std::cout << "pull: " << fractions.size() << " steps of progress\n";
    EXPECT_EQ(contents(local.filePath(u"back.bin"_s)), bytes);
}

TEST_F(DeviceTest, failuresInWords) {
    const QString missing = folder() + u"/nope"_s;
    EXPECT_TRUE(pull(missing, u"x"_s).contains(u"No such file or directory"_s));
    const auto listing = ADBClient::listDirectory(serial(), missing);
    ASSERT_FALSE(listing);
    EXPECT_TRUE(listing.error().errorDescription().contains(u"No such file or directory"_s));
    write(local.filePath(u"x"_s), "x");
    const QString refused = push(u"x"_s, u"/system/vantrel-device-test"_s);
    EXPECT_TRUE(refused.startsWith(u"failed to copy"_s)) << refused.toStdString();
    const auto other = ADBClient::listDirectory(u"no-such-phone"_s, u"/sdcard"_s);
    ASSERT_FALSE(other);
    EXPECT_TRUE(other.error().errorDescription().contains(u"not found"_s));
    std::cout << refused.toStdString() << '\n' << other.error().errorDescription().toStdString() << '\n';
}
