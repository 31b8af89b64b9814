// On a real phone through the real adb, in a folder of its own that it clears: ./test --device SERIAL. Not
// part of the usual run, which has no phone. Where the serial is an address, HOST:PORT, the phone is also
// left and found again; with a second phone's serial in VANTREL_SECOND_DEVICE, the two stand side by side.

#include "support/Files.h"
#include "support/Printers.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "ADB/DeviceTracker.h"
#include "ADB/PhoneCopies.h"
#include "State/PhoneWatch.h"
#include "State/WirelessPhones.h"
#include "Worker/Worker.h"

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

TEST_F(DeviceTest, aNewFolderIsMadeOnceWhateverItsName) {
    const QString parent = folder() + QStringLiteral("/new");
    ASSERT_TRUE(ADBClient::makeFolders(serial(), {parent}, {}));
    for (const QString &name : {QStringLiteral("plain"), QStringLiteral("two  words"), QStringLiteral("-p"),
                                QStringLiteral("it's $(touch pwned) `x` ; y"), QStringLiteral("grüße 😀")}) {
        EXPECT_TRUE(ADBClient::createFolder(serial(), parent, name)) << name.toStdString();
        const auto again = ADBClient::createFolder(serial(), parent, name);
        ASSERT_FALSE(again);
        EXPECT_TRUE(again.error().errorDescription().contains(QStringLiteral("is there already")))
            << again.error().errorDescription().toStdString();
    }
    EXPECT_EQ(ADBClient::listDirectory(serial(), parent)->size(), 5);
}

TEST_F(DeviceTest, aPhoneThatKeepsSilentIsGivenUp) {
    QElapsedTimer time;
    time.start();
    const auto answer = ADBClient::askADB({QStringLiteral("-s"), serial(), QStringLiteral("shell"),
                                           QStringLiteral("sleep"), QStringLiteral("60")},
                                          std::chrono::milliseconds(500), {});
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error(), ADBError::noAnswer());
    EXPECT_LT(time.elapsed(), 1500);
}

TEST_F(DeviceTest, comingAndGoingIsToldAtOnce) {
    if (!serial().contains(QLatin1Char(':')))
        GTEST_SKIP() << "a phone on a cable is plugged by hand";
    DeviceTracker tracker;
    QList<ListedPhone> phones;
    QObject::connect(&tracker, &DeviceTracker::changed, [&](const QList<ListedPhone> &now) { phones = now; });
    const auto isListed = [&] {
        return std::any_of(phones.begin(), phones.end(), [](const ListedPhone &phone) {
            return phone.serial == serial() && phone.isReady();
        });
    };
    tracker.start();
    ASSERT_TRUE(waitFor(isListed));
    QElapsedTimer time;
    ASSERT_TRUE(ADBClient::disconnectFrom(serial()));
    time.start();
    ASSERT_TRUE(waitFor([&] { return !isListed(); }));
    EXPECT_LT(time.elapsed(), 500);
    std::cout << "gone after " << time.elapsed() << " ms\n";

    WirelessPhones wireless({});
    QString connected;
    QObject::connect(&wireless, &WirelessPhones::connected, [&](const QString &found) { connected = found; });
    wireless.connectTo(serial(), {}, {});
    ASSERT_TRUE(waitFor([&] { return !wireless.isConnecting(); }));
    time.start();
    EXPECT_EQ(connected, serial()) << wireless.message().toStdString();
    ASSERT_TRUE(waitFor(isListed));
    EXPECT_LT(time.elapsed(), 500);
    std::cout << "back after " << time.elapsed() << " ms\n";
    EXPECT_EQ(wireless.remembered(), QStringList{serial()});
    wireless.connectTo(QStringLiteral("127.0.0.1:1"), {}, {});
    ASSERT_TRUE(waitFor([&] { return !wireless.isConnecting(); }));
    EXPECT_TRUE(wireless.message().contains(QStringLiteral("refused"))) << wireless.message().toStdString();
    Background::finish();
}

TEST_F(DeviceTest, ofTwoPhonesTheOneThatIsShownStays) {
    const QString second = qEnvironmentVariable("VANTREL_SECOND_DEVICE");
    if (second.isEmpty())
        GTEST_SKIP() << "VANTREL_SECOND_DEVICE names no other phone";
    PhoneWatch watch([]() -> QCoro::Task<> { co_return; });
    const auto shows = [&](const QString &wanted) {
        return waitFor([&] { return watch.device().id == wanted && !watch.isRefreshing(); });
    };
    watch.start();
    ASSERT_TRUE(waitFor([&] { return watch.phones().size() >= 2 && watch.device().isConnected; }));
    for (const QString &wanted : {serial(), second, serial()}) {
        watch.show(wanted, PhoneWatch::Spinner::shown);
        ASSERT_TRUE(shows(wanted));
        watch.refresh(PhoneWatch::Spinner::shown);
        ASSERT_TRUE(shows(wanted)) << "whichever adb lists first";
    }
    EXPECT_GT(watch.device().totalBytes, 0);
    for (const ListedPhone &phone : watch.phones())
        std::cout << phone.serial.toStdString() << ' ' << phone.state.toStdString() << ' '
                  << phone.model.toStdString() << '\n';
    watch.stop();
    Background::finish();
}
