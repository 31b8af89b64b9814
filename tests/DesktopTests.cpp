// The desktop that the program runs on: its questions, and what it passes on to the system.

#include "support/WindowFixture.h"

#include "App/Sheets/TextPrompt.h"
#include "App/System/DesktopPreferences.h"
#include "App/System/FileManager.h"
#include "App/System/QtDesktop.h"
#include "App/System/StayAwake.h"

#include <QtDBus>
#include <QtWidgets>

#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

class DesktopTests : public WindowFixture {
protected:
    DesktopTests() {
        window = show(new QMainWindow, {1100, 720});
        real.setWindow(window);
    }

    [[nodiscard]] TextPrompt *prompt() const {
        auto *found = window->findChild<TextPrompt *>();
        EXPECT_TRUE(found && found->isVisible());
        return found;
    }
    QFuture<std::optional<QString>> ask() {
        return real.askForText({u"New Folder"_s, u"Enter a name for the new folder:"_s, u"Create"_s,
                                u"Cancel"_s, u"New Folder"_s});
    }

    QtDesktop real{&askForText};
    QMainWindow *window = nullptr;
};

TEST_F(DesktopTests, thePromptIsPrefilledAndAnswersByMouseAndKeys) {
    const auto field = [](TextPrompt *shown) { return shown->findChild<QLineEdit *>(); };
    const auto key = [&](Qt::Key which) {
        return [=](TextPrompt *shown) { QTest::keyClick(field(shown), which); };
    };
    const auto type = [&](TextPrompt *shown) { // over the selection
        QTest::keyClicks(field(shown), u"Holiday"_s);
        QTest::mouseClick(shown->findChild<QAbstractButton *>(u"textPrompt.accept"_s), Qt::LeftButton);
    };
    const auto cancel = [](TextPrompt *shown) {
        QTest::mouseClick(shown->findChild<QAbstractButton *>(u"textPrompt.cancel"_s), Qt::LeftButton);
    };
    using Answer = std::pair<std::function<void(TextPrompt *)>, std::optional<QString>>;
    for (const auto &[answer, expected] : {Answer{key(Qt::Key_Return), u"New Folder"_s},
                                           {type, u"Holiday"_s},
                                           {key(Qt::Key_Escape), {}},
                                           {cancel, {}},
                                           {&QWidget::close, {}}}) {
        const auto future = ask();
        TextPrompt *shown = prompt();
        ASSERT_NE(shown, nullptr);
        EXPECT_FALSE(future.isFinished()) << "nobody has answered yet";
        EXPECT_EQ(field(shown)->size(), QSize(240, 24));
        EXPECT_EQ(field(shown)->selectedText(), u"New Folder"_s);
        ASSERT_TRUE(waitFor([&] { return field(shown)->hasFocus(); }));
        answer(shown);
        ASSERT_TRUE(future.isFinished());
        EXPECT_EQ(future.result(), expected);
        ASSERT_TRUE(waitFor([&] { return !window->findChild<TextPrompt *>(); })) << "nothing is left of it";
    }
}

TEST_F(DesktopTests, aQuestionIsGivenUpWithItsWindow) {
    const auto text = ask();
    view.reset();
    EXPECT_TRUE(text.isFinished());
    EXPECT_EQ(text.resultCount(), 0);
}

TEST_F(DesktopTests, theModelMakesTheFolderThatWasAskedFor) {
    auto model = AppState::designPreview(real);
    model->browseMac(mac.path());
    ASSERT_TRUE(waitFor([&] { return !model->isLoadingMac(); }));
    model->createMacFolder();
    ASSERT_TRUE(waitFor([&] { return prompt()->findChild<QLineEdit *>()->hasFocus(); }));
    QTest::keyClicks(prompt()->findChild<QLineEdit *>(), u"  Lisbon "_s);
    QTest::keyClick(prompt()->findChild<QLineEdit *>(), Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return QDir(mac.filePath(u"Lisbon"_s)).exists(); }));
    ASSERT_TRUE(waitFor([&] { return !model->macItems().isEmpty() && !model->isLoadingMac(); }));
}

TEST_F(DesktopTests, theFolderChooserAnswersThroughItsFuture) {
    QDir(mac.path()).mkpath(u"inside"_s);
    for (const bool accepted : {true, false}) {
        const auto future = real.chooseFolder(u"Choose a folder"_s, u"Choose"_s, mac.path());
        auto *chooser = window->findChild<QFileDialog *>();
        ASSERT_NE(chooser, nullptr);
        EXPECT_FALSE(future.isFinished());
        EXPECT_EQ(chooser->windowTitle(), u"Choose a folder"_s);
        EXPECT_EQ(chooser->labelText(QFileDialog::Accept), u"Choose"_s);
        EXPECT_EQ(QDir(chooser->directory()).canonicalPath(), QDir(mac.path()).canonicalPath());
        chooser->selectFile(mac.filePath(u"inside"_s));
        QDialog *dialog = chooser; // where these are public
        if (accepted)
            dialog->accept();
        else
            dialog->reject();
        ASSERT_TRUE(future.isFinished());
        EXPECT_EQ(future.result(), accepted ? std::optional(mac.filePath(u"inside"_s)) : std::nullopt);
        ASSERT_TRUE(waitFor([&] { return !window->findChild<QFileDialog *>(); }));
    }
}

/// Stands in for the programs that open files.
class Opener : public QObject {
    Q_OBJECT
public:
    Opener() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~Opener() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    QStringList opened;
public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url.toLocalFile()); }
};

TEST_F(DesktopTests, opensAndCopiesWhatIsNamedLetterForLetter) {
    Opener opener;
    const QString odd = u"/tmp/50% off #1? ünï.txt"_s;
    real.openFile(odd);
    EXPECT_EQ(opener.opened, QStringList{odd});
    real.copyText(odd);
    EXPECT_EQ(QApplication::clipboard()->text(), odd);
}

/// A file manager at the other end of a bus of its own.
class FileManagerStub : public QDBusVirtualObject {
    Q_OBJECT
public:
    bool refuses = false;
    QList<QStringList> shown;

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        if (message.member() != u"ShowItems"_s || message.path() != u"/org/freedesktop/FileManager1"_s)
            return false;
        if (refuses)
            return bus.send(message.createErrorReply(QDBusError::Failed, u"no"_s));
        shown.append(message.arguments().value(0).toStringList());
        return bus.send(message.createReply());
    }
};

/// A settings portal at the other end of a bus of its own.
class PortalStub : public QDBusVirtualObject {
    Q_OBJECT
public:
    using Groups = QMap<QString, QVariantMap>;
    std::optional<Groups> settings; ///< nothing: it refuses

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    /// Right after its answer the user turns the desktop dark.
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        if (message.member() != u"ReadAll"_s)
            return false;
        QDBusMessage change =
            QDBusMessage::createSignal(message.path(), message.interface(), u"SettingChanged"_s);
        change << u"org.freedesktop.appearance"_s << u"color-scheme"_s
               << QVariant::fromValue(QDBusVariant(1U));
        return bus.send(settings ? message.createReply(QVariant::fromValue(*settings))
                                 : message.createErrorReply(QDBusError::Failed, u"no"_s)) &&
               bus.send(change);
    }
};

TEST_F(DesktopTests, readsThePreferencesOfTheDesktopAndFollowsThem) {
    qDBusRegisterMetaType<PortalStub::Groups>();
    // A bus like a desktop's, of its own.
    QProcess daemon;
    daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    ASSERT_TRUE(waitFor([&] { return daemon.canReadLine(); }));
    const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
    PortalStub portal;
    QDBusConnection there = QDBusConnection::connectToBus(address, u"portal"_s);
    ASSERT_TRUE(there.registerVirtualObject(u"/org"_s, &portal, QDBusConnection::SubPath));
    ASSERT_TRUE(there.registerService(u"org.freedesktop.portal.Desktop"_s));
    const QDBusConnection bus = QDBusConnection::connectToBus(address, u"program"_s);

    const QString appearance = u"org.freedesktop.appearance"_s;
    const QString gnome = u"org.gnome.desktop.interface"_s;
    const QString name = u"color-scheme"_s;
    using enum ColorScheme;
    using Schemes = QList<ColorScheme>;
    // What the portal answers, and what is heard of it: the answer, then the change.
    const std::tuple<std::optional<PortalStub::Groups>, Schemes, QList<bool>> cases[] = {
        {{{{appearance, {{name, 1U}}}}}, {dark, dark}, {}},
        {{{{appearance, {{name, 2U}}}}}, {light, dark}, {}},
        {{{{appearance, {{name, 0U}}}}}, {light, dark}, {}},
        {{{{appearance, {{name, 77U}}}}}, {light, dark}, {}},
        {{{{appearance, {{name, u"dark"_s}}}}}, {light, dark}, {}},
        {{{{gnome, {{u"enable-animations"_s, false}}}}}, {dark}, {true}},
        {{{{gnome, {{u"enable-animations"_s, false}}}, {appearance, {{u"reduced-motion"_s, 0U}}}}},
         {dark},
         {true, false}},
        {{{{u"org.other"_s, {{name, 2U}}}}}, {dark}, {}},
        {std::nullopt, {dark}, {}},
    };
    for (const auto &[settings, schemes, motions] : cases) {
        portal.settings = settings;
        DesktopPreferences preferences(bus);
        Schemes heardSchemes;
        QList<bool> heardMotions;
        QObject::connect(&preferences, &DesktopPreferences::colorSchemePreferred,
                         [&](ColorScheme scheme) { heardSchemes.append(scheme); });
        QObject::connect(&preferences, &DesktopPreferences::reducedMotionPreferred,
                         [&](bool reduced) { heardMotions.append(reduced); });
        EXPECT_TRUE(waitFor([&] { return heardSchemes.size() >= schemes.size(); }));
        EXPECT_EQ(heardSchemes, schemes);
        EXPECT_EQ(heardMotions, motions);
    }
    const DesktopPreferences nobodyToAsk{QDBusConnection(u"no such bus"_s)};
    for (const QString &connection : {u"portal"_s, u"program"_s})
        QDBusConnection::disconnectFromBus(connection);
    daemon.terminate();
    EXPECT_TRUE(daemon.waitForFinished());
}

TEST_F(DesktopTests, revealsInTheFileManagerOrOpensTheFolder) {
    QDBusServer server(u"unix:dir="_s + mac.path());
    FileManagerStub manager;
    QObject::connect(&server, &QDBusServer::newConnection, &manager, [&](QDBusConnection connection) {
        connection.registerVirtualObject(u"/"_s, &manager, QDBusConnection::SubPath);
    });
    ASSERT_TRUE(server.isConnected()) << server.lastError().message().toStdString();
    const QDBusConnection bus = QDBusConnection::connectToPeer(server.address(), u"manager"_s);
    ASSERT_TRUE(waitFor([&] { return bus.isConnected(); }));

    int failures = 0;
    const auto reveal = [&](const QDBusConnection &on) {
        showInFileManager(on, u"/home/sam/50% #1.txt"_s, window, [&] { ++failures; });
    };
    reveal(bus);
    ASSERT_TRUE(waitFor([&] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown.first(), QStringList{u"file:///home/sam/50%25%20%231.txt"_s});

    manager.refuses = true;
    reveal(bus);
    ASSERT_TRUE(waitFor([&] { return failures == 1; }));
    reveal(QDBusConnection(u"no such bus"_s));
    ASSERT_TRUE(waitFor([&] { return failures == 2; }));
    EXPECT_EQ(manager.shown.size(), 1);
    QDBusConnection::disconnectFromPeer(u"manager"_s);
}

/// A login manager: the other ends of the locks that it has given. It is the desktop's portal as well.
class LoginManagerStub : public QDBusVirtualObject {
public:
    QList<int> locks;
    QStringList asked;
    QSet<QString> logOutRequests; ///< that are open
    int logOutQuestions = 0;
    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        if (message.interface() == u"org.freedesktop.portal.Inhibit"_s) {
            EXPECT_EQ(message.signature(), u"sua{sv}"_s);
            EXPECT_EQ(message.arguments().value(1).toUInt(), 1U) << "the log-out alone";
            const QString path = u"/request/%1"_s.arg(++logOutQuestions);
            logOutRequests.insert(path);
            bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
            return true;
        }
        if (message.member() == u"Close"_s)
            return logOutRequests.remove(message.path());
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
        asked.append(message.arguments().first().toString() + u' ' + message.arguments().last().toString());
        locks.append(ends[0]);
        bus.send(message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]))));
        close(ends[1]);
        return true;
    }
    /// Whether the program holds the newest lock.
    [[nodiscard]] bool isHeld() const {
        char byte = 0;
        return read(locks.last(), &byte, 1) < 0; // the end of the pipe, once the other end is closed
    }
    ~LoginManagerStub() override {
        for (const int lock : locks)
            close(lock);
    }
};

TEST(StayAwakeTests, holdsSleepAndLogOutAsLongAsItIsOn) {
    LoginManagerStub manager;
    QDBusServer server;
    QObject::connect(&server, &QDBusServer::newConnection, &manager, [&](QDBusConnection connection) {
        connection.registerVirtualObject(u"/"_s, &manager, QDBusConnection::SubPath);
    });
    {
        const QDBusConnection bus = QDBusConnection::connectToPeer(server.address(), u"login"_s);
        StayAwake awake(bus, bus);
        awake.setOn(true);
        awake.setOn(true);
        ASSERT_TRUE(waitFor([&] { return manager.locks.size() == 1; }));
        EXPECT_EQ(manager.asked, QStringList(u"sleep:idle block"_s));
        EXPECT_TRUE(manager.isHeld());
        EXPECT_TRUE(waitFor([&] { return manager.logOutRequests.size() == 1; }));
        awake.setOn(false);
        EXPECT_TRUE(waitFor([&] { return !manager.isHeld() && manager.logOutRequests.isEmpty(); }));
        awake.setOn(true);
        awake.setOn(false); // before it was given
        ASSERT_TRUE(waitFor([&] {
            return manager.locks.size() == 2 && !manager.isHeld() && manager.logOutQuestions == 2 &&
                   manager.logOutRequests.isEmpty();
        }));
        awake.setOn(true);
        ASSERT_TRUE(waitFor([&] { return manager.locks.size() == 3 && manager.logOutQuestions == 3; }));
    }
    EXPECT_TRUE(waitFor([&] { return !manager.isHeld(); })) << "it ends with it";
    QDBusConnection::disconnectFromPeer(u"login"_s);
    const QDBusConnection none(u"no such bus"_s);
    StayAwake(none, none).setOn(true);
}

} // namespace
} // namespace vantrel

#include "DesktopTests.moc"
