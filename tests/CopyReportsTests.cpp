// What people hear of their copies while they look elsewhere, on a bus of the test's own.

#include "support/Bus.h"
#include "support/WindowFixture.h"

#include "App/Window/CopyReports.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

TEST(RunSummaryTests, saysWhatMattersInPlainWords) {
    const struct {
        RunSummary run;
        QString heading;
        QString detail;
    } cases[] = {
        {{}, u""_s, u""_s},
        {{.copied = 1}, u"1 copied"_s, u""_s},
        {{.copied = 1240, .failed = 3}, u"1,240 copied, 3 could not be"_s, u""_s},
        {{.failed = 1234567}, u"1,234,567 could not be copied"_s, u""_s},
        {{.copied = 2, .undecided = 1},
         u"2 copied"_s,
         u"1 waits for you to decide: another content has its name."_s},
        {{.undecided = 1}, u"1 copy waits for you to decide"_s, u"Another content has its name."_s},
        {{.undecided = 1500, .waiting = 1},
         u"1,500 copies wait for you to decide"_s,
         u"Other contents have their names.\n1 waits for the phone."_s},
        {{.failed = 1, .undecided = 2, .waiting = 1000},
         u"1 could not be copied"_s,
         u"2 wait for you to decide: other contents have their names.\n1,000 wait for the phone."_s},
        {{.waiting = 37}, u"37 copies wait for the phone"_s, u""_s},
    };
    for (const auto &[run, heading, detail] : cases) {
        EXPECT_EQ(run.heading(), heading);
        EXPECT_EQ(run.detail(), detail);
    }
}

/// What is said on a bus, and when, in milliseconds.
class SignalLog : public QObject {
    Q_OBJECT

public:
    SignalLog() { m_clock.start(); }
    [[nodiscard]] QVariant at(qsizetype index, const QString &key) const {
        return qdbus_cast<QVariantMap>(messages.at(index).second.arguments().at(1)).value(key);
    }
    [[nodiscard]] QVariant last(const QString &key) const {
        return messages.isEmpty() ? QVariant() : at(messages.size() - 1, key);
    }
    Q_SLOT void take(const QDBusMessage &message) { messages.append({m_clock.elapsed(), message}); }

    QList<std::pair<qint64, QDBusMessage>> messages;

private:
    QElapsedTimer m_clock;
};

/// A desktop that shows notifications and launcher icons, and a window that is not in front.
class CopyReportsTests : public WindowFixture {
protected:
    struct Shown {
        uint replaces;
        QString heading;
        QString detail;
    };

    void SetUp() override {
        ASSERT_TRUE(there.registerVirtualObject(u"/org"_s, &server, QDBusConnection::SubPath));
        ASSERT_TRUE(there.registerService(service));
        ASSERT_TRUE(there.connect({}, {}, u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s, &launcher,
                                  SLOT(take(QDBusMessage))));
        window = show(new QWidget, {400, 300});
        reports = std::make_unique<CopyReports>(window, *state, bus, 20ms);
        connectPhone();
        leave();
    }
    void TearDown() override { reports.reset(); }

    void leave() {
        window->showMinimized();
        QApplication::setActiveWindow(nullptr);
    }
    /// Copies these files of the phone; a name that is not there fails.
    void copy(const QStringList &names, const QString &serial = DemoPhone::serial()) {
        QList<QueueItem> items;
        for (const QString &name : names) {
            items += QueueItem{.id = QUuid::createUuid(),
                               .name = name,
                               .sourcePath = u"/sdcard/"_s + name,
                               .destinationFolder = mac.path(),
                               .status = {},
                               .serial = serial};
        }
        state->transfers().enqueue(items);
    }
    void waitForNotification() {
        const qsizetype before = shown.size();
        ASSERT_TRUE(waitFor([&] { return shown.size() > before; }));
    }
    /// It has been handed on when this returns.
    void signal(const char *name, const QVariantList &arguments) { signal(there, name, arguments); }
    void signal(const QDBusConnection &from, const char *name, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createSignal(u"/org/freedesktop/Notifications"_s, service,
                                                          QString::fromLatin1(name));
        message.setArguments(arguments);
        from.send(message);
        EXPECT_TRUE(from.interface()->isServiceRegistered(service));
    }

    const QString service = u"org.freedesktop.Notifications"_s;
    PrivateBus desktopBus;
    QDBusConnection there = desktopBus.connection(u"there"_s);
    QDBusConnection bus = desktopBus.connection(u"program"_s);
    QList<Shown> shown;
    QList<uint> closed;
    Stub server{[this](const QDBusMessage &message, const QDBusConnection &connection) {
        const QVariantList arguments = message.arguments();
        if (message.member() == u"CloseNotification"_s) {
            closed += arguments.first().toUInt();
            return connection.send(message.createReply());
        }
        EXPECT_EQ(message.signature(), u"susssasa{sv}i"_s);
        EXPECT_EQ(arguments[5].toStringList().value(0), u"default"_s) << "or a click tells nobody";
        shown += Shown{arguments[1].toUInt(), arguments[3].toString(), arguments[4].toString()};
        return connection.send(message.createReply(uint(shown.size())));
    }};
    SignalLog launcher;
    QWidget *window = nullptr;
    std::unique_ptr<CopyReports> reports;
};

TEST_F(CopyReportsTests, oneForEachRunThatEndsUnseen) {
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
        phone.write(name, "x");
    copy({u"a"_s, u"b"_s, u"gone"_s});
    waitForNotification();
    EXPECT_EQ(shown.last().heading, u"2 copied, 1 could not be"_s);
    EXPECT_EQ(shown.last().replaces, 0U);

    write(mac.filePath(u"c"_s), "another");
    copy({u"c"_s});
    waitForNotification();
    EXPECT_EQ(shown.last().heading, u"1 copy waits for you to decide"_s) << "and nothing of the run before";
    EXPECT_EQ(shown.last().replaces, 1U) << "they do not pile up";

    copy({u"a"_s}, u"another phone"_s);
    phone.unplug();
    copy({u"b"_s});
    waitForNotification();
    EXPECT_EQ(shown.last().heading, u"2 copies wait for the phone"_s);

    // In front nothing is said, and what was said before is taken away.
    phone.plug();
    refresh();
    QApplication::setActiveWindow(window);
    ASSERT_TRUE(waitFor([&] { return closed.size() == 1; }));
    EXPECT_EQ(closed.first(), 3U);
    waitForQueue();
    copy({u"a"_s});
    waitForQueue();
    QTest::qWait(60);
    EXPECT_EQ(shown.size(), 3);
}

TEST_F(CopyReportsTests, whatTheUserStoppedIsNoNews) {
    phone.set(u"facts.hang"_s, "on");
    phone.write(u"a"_s, "x");
    phone.write(u"b"_s, "x");
    copy({u"a"_s, u"b"_s});
    for (const QueueItem &item : QList(state->queue()))
        state->removeQueueItem(item.id);
    waitForQueue();
    copy({u"a"_s});
    state->transfers().pause();
    waitForQueue();
    QTest::qWait(60);
    EXPECT_TRUE(shown.isEmpty());
    phone.reset(u"facts.hang"_s);
    state->transfers().resume();
    waitForNotification();
    EXPECT_EQ(shown.last().heading, u"1 copied"_s);
}

TEST_F(CopyReportsTests, aRunGoesOnAfterAPauseAndWhatWasTriedAgainHasNotFailed) {
    phone.write(u"big"_s, QByteArray(400'000, 'x'));
    phone.write(u"a"_s, "x");
    phone.set(u"bandwidth"_s, "0.05");
    TransferRunner &transfers = state->transfers();
    copy({u"big"_s, u"late"_s, u"a"_s});
    ASSERT_TRUE(waitFor(
        [&] { return transfers.queue().failedCount() == 1 && transfers.queue().completedCount() == 1; }));
    phone.write(u"late"_s, "x");
    transfers.tryAllAgain();
    ASSERT_TRUE(waitFor([&] { return transfers.queue().completedCount() == 2; }));
    transfers.pause();
    waitForQueue();
    QTest::qWait(60);
    EXPECT_TRUE(shown.isEmpty()) << "the user has paused it and knows";
    phone.reset(u"bandwidth"_s);
    transfers.resume();
    waitForNotification();
    EXPECT_EQ(shown.last().heading, u"3 copied"_s);
}

TEST_F(CopyReportsTests, aClickBringsTheWindowBack) {
    phone.write(u"a"_s, "x");
    copy({u"a"_s});
    waitForNotification();
    signal("ActionInvoked", {99U, u"default"_s}); // another program's
    signal("ActivationToken", {1U, u"token"_s});
    signal(desktopBus.connection(u"stranger"_s), "ActivationToken", {1U, u"forged"_s});
    signal("ActionInvoked", {1U, u"default"_s});
    ASSERT_TRUE(waitFor([&] { return !window->isMinimized(); }));
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "token");
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

TEST_F(CopyReportsTests, theLaunchersIconShowsHowFarTheyAre) {
    phone.write(u"big"_s, QByteArray(400'000, 'x'));
    phone.set(u"bandwidth"_s, "0.2");
    copy({u"big"_s, u"gone"_s});
    waitForQueue();
    const auto isPlain = [&] {
        return !launcher.messages.isEmpty() && !launcher.last(u"progress-visible"_s).toBool();
    };
    ASSERT_TRUE(waitFor(isPlain));
    EXPECT_TRUE(launcher.last(u"urgent"_s).toBool()) << "one has failed";
    EXPECT_GT(launcher.messages.size(), 2);
    double progress = 0;
    for (qsizetype i = 0; i < launcher.messages.size(); ++i) {
        const auto [time, message] = launcher.messages.at(i);
        EXPECT_EQ(message.arguments().first().toString(), u"application://com.vantrelapp.Vantrel.desktop"_s);
        if (i > 0) {
            EXPECT_GE(time - launcher.messages.at(i - 1).first, 400) << "at most twice a second";
        }
        if (!launcher.at(i, u"progress-visible"_s).toBool())
            continue;
        EXPECT_GE(launcher.at(i, u"progress"_s).toDouble(), progress);
        progress = launcher.at(i, u"progress"_s).toDouble();
    }
    EXPECT_GT(progress, 0);
    QApplication::setActiveWindow(window);
    ASSERT_TRUE(waitFor([&] { return !launcher.last(u"urgent"_s).toBool(); }));

    copy({u"gone"_s});
    waitForQueue();
    phone.set(u"facts.hang"_s, "on");
    copy({u"another"_s});
    ASSERT_TRUE(waitFor([&] { return launcher.last(u"progress-visible"_s).toBool(); }));
    EXPECT_FALSE(launcher.last(u"urgent"_s).toBool()) << "who has it in front has seen that one fail";
    reports.reset();
    EXPECT_TRUE(waitFor(isPlain)) << "nothing stays when the program goes";
}

} // namespace
} // namespace vantrel

#include "CopyReportsTests.moc"
