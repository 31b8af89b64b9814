// The desktop that the program runs on: its questions, and what it passes on to the system.

#include "support/Bus.h"
#include "support/OpenedAddresses.h"
#include "support/WindowFixture.h"

#include "App/Sheets/TextPrompt.h"
#include "App/System/DesktopPreferences.h"
#include "App/System/FileManager.h"
#include "App/System/QtDesktop.h"
#include "App/System/StayAwake.h"

#include <QtDBus>

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
    const auto press = [](const char *name) {
        return [name](TextPrompt *shown) { click(shown->findChild<QWidget *>(QLatin1String(name))); };
    };
    const auto key = [](Qt::Key which) {
        return [which](TextPrompt *shown) { QTest::keyClick(shown->findChild<QLineEdit *>(), which); };
    };
    const auto type = [&](TextPrompt *shown) { // over the selection
        QTest::keyClicks(shown->findChild<QLineEdit *>(), u"Holiday"_s);
        press("textPrompt.accept")(shown);
    };
    using Answer = std::pair<std::function<void(TextPrompt *)>, std::optional<QString>>;
    for (const auto &[answer, expected] : {Answer{key(Qt::Key_Return), u"New Folder"_s},
                                           {type, u"Holiday"_s},
                                           {key(Qt::Key_Escape), {}},
                                           {press("textPrompt.cancel"), {}},
                                           {&QWidget::close, {}}}) {
        const auto future = ask();
        TextPrompt *shown = prompt();
        ASSERT_NE(shown, nullptr);
        EXPECT_FALSE(future.isFinished()) << "nobody has answered yet";
        const auto *field = shown->findChild<QLineEdit *>();
        EXPECT_EQ(field->selectedText(), u"New Folder"_s);
        ASSERT_TRUE(waitFor([&] { return field->hasFocus(); }));
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

TEST_F(DesktopTests, opensAndCopiesWhatIsNamedLetterForLetter) {
    const OpenedAddresses opener({u"file"_s});
    const QString odd = u"/tmp/50% off #1? ünï.txt"_s;
    real.openFile(odd);
    EXPECT_EQ(opener.addresses, QList<QUrl>{QUrl::fromLocalFile(odd)});
    real.copyText(odd);
    EXPECT_EQ(QApplication::clipboard()->text(), odd);
}

TEST_F(DesktopTests, readsThePreferencesOfTheDesktopAndFollowsThem) {
    using Groups = QMap<QString, QVariantMap>;
    using Words = QMap<QString, QString>;
    qDBusRegisterMetaType<Groups>();
    qDBusRegisterMetaType<Words>();
    PrivateBus desktopBus;
    QVariant answer; // nothing: it refuses
    // Right after its answer the user turns the desktop dark. What comes before that means nothing.
    Stub portal([&](const QDBusMessage &message, const QDBusConnection &bus) {
        const auto tell = [&](const QString &group, const QVariant &value) {
            QDBusMessage change =
                QDBusMessage::createSignal(message.path(), message.interface(), u"SettingChanged"_s);
            return bus.send(change << group << u"color-scheme"_s << value);
        };
        const QString appearance = u"org.freedesktop.appearance"_s;
        return bus.send(answer.isValid() ? message.createReply(answer)
                                         : message.createErrorReply(QDBusError::Failed, u"no"_s)) &&
               tell(u"org.other"_s, QVariant::fromValue(QDBusVariant(2U))) && tell(appearance, u"light"_s) &&
               tell(appearance, QVariant::fromValue(QDBusVariant(1U)));
    });
    QDBusConnection there = desktopBus.connection(u"portal"_s);
    ASSERT_TRUE(there.registerVirtualObject(u"/org"_s, &portal, QDBusConnection::SubPath));
    ASSERT_TRUE(there.registerService(u"org.freedesktop.portal.Desktop"_s));
    const QDBusConnection bus = desktopBus.connection(u"program"_s);

    const QString appearance = u"org.freedesktop.appearance"_s;
    const QString gnome = u"org.gnome.desktop.interface"_s;
    const QString gnomeHelp = u"org.gnome.desktop.a11y.interface"_s;
    const QString windows = u"org.gnome.desktop.wm.preferences"_s;
    const QString mouse = u"org.gnome.desktop.peripherals.mouse"_s;
    const QString name = u"color-scheme"_s;
    const QString scale = u"text-scaling-factor"_s;
    const QString layout = u"button-layout"_s;
    const auto groups = [](const Groups &all) { return QVariant::fromValue(all); };
    // What the portal answers, and what is heard of it; then comes the change.
    const std::pair<QVariant, QStringList> cases[] = {
        {groups({{appearance, {{name, 1U}}}}), {u"dark"_s}},
        {groups({{appearance, {{name, 2U}}}}), {u"light"_s}},
        {groups({{appearance, {{name, u"dark"_s}}}}), {u"light"_s}},
        {groups({{gnome, {{u"enable-animations"_s, false}}}}), {u"less motion"_s}},
        {groups({{gnome, {{u"enable-animations"_s, false}}}, {appearance, {{u"reduced-motion"_s, 0U}}}}),
         {u"less motion"_s, u"motion"_s}},
        {groups({{gnomeHelp, {{u"high-contrast"_s, true}}}}), {u"contrast"_s}},
        {groups({{gnomeHelp, {{u"high-contrast"_s, true}}}, {appearance, {{u"contrast"_s, 0U}}}}),
         {u"contrast"_s, u"usual contrast"_s}},
        {groups({{appearance, {{u"contrast"_s, 1U}}}}), {u"contrast"_s}},
        {groups({{gnome, {{scale, 1.25}}}}), {u"texts 1.25"_s}},
        {groups({{gnome, {{scale, 0.0}}}}), {}},
        {groups({{gnome, {{scale, u"large"_s}}}}), {}},
        {groups({{windows, {{layout, u"close:"_s}}}}), {u"buttons close:"_s}},
        {groups({{windows, {{layout, 7}}}}), {}},
        {groups({{mouse, {{u"double-click"_s, 650}}}}), {u"double-click 650"_s}},
        {groups({{mouse, {{u"double-click"_s, -1}}}}), {}},
        {groups({{u"org.other"_s, {{name, 2U}}}}), {}},
        {QVariant(), {}},
        {QVariant(u"words"_s), {}},
        {QVariant::fromValue(Words{{appearance, name}}), {}},
    };
    for (const auto &[settings, expected] : cases) {
        answer = settings;
        DesktopPreferences preferences(bus);
        QStringList heard;
        const auto hear = [&](auto signal, auto words) {
            QObject::connect(&preferences, signal, &preferences,
                             [&heard, words](auto value) { heard += words(value); });
        };
        hear(&DesktopPreferences::colorSchemePreferred,
             [](ColorScheme scheme) { return scheme == ColorScheme::dark ? u"dark"_s : u"light"_s; });
        hear(&DesktopPreferences::reducedMotionPreferred,
             [](bool is) { return is ? u"less motion"_s : u"motion"_s; });
        hear(&DesktopPreferences::contrastPreferred,
             [](Contrast is) { return is == Contrast::high ? u"contrast"_s : u"usual contrast"_s; });
        hear(&DesktopPreferences::textScalePreferred,
             [](double factor) { return u"texts %1"_s.arg(factor); });
        hear(&DesktopPreferences::titleButtonsPreferred,
             [](const QString &buttons) -> QString { return u"buttons "_s + buttons; });
        hear(&DesktopPreferences::doubleClickPreferred,
             [](int interval) { return u"double-click %1"_s.arg(interval); });
        EXPECT_TRUE(waitFor([&] { return heard.size() > expected.size(); }));
        EXPECT_EQ(heard, expected + QStringList(u"dark"_s));
    }
    const DesktopPreferences nobodyToAsk{QDBusConnection(u"no such bus"_s)};
}

TEST_F(DesktopTests, revealsInTheFileManagerOrOpensTheFolder) {
    QDBusServer server(u"unix:dir="_s + mac.path());
    QList<QStringList> shown;
    bool refuses = false;
    Stub manager([&](const QDBusMessage &message, const QDBusConnection &bus) {
        EXPECT_EQ(message.path() + u' ' + message.member(), u"/org/freedesktop/FileManager1 ShowItems");
        if (refuses)
            return bus.send(message.createErrorReply(QDBusError::Failed, u"no"_s));
        shown.append(message.arguments().value(0).toStringList());
        return bus.send(message.createReply());
    });
    manager.serve(server);
    ASSERT_TRUE(server.isConnected()) << server.lastError().message().toStdString();
    const QDBusConnection bus = QDBusConnection::connectToPeer(server.address(), u"manager"_s);
    ASSERT_TRUE(waitFor([&] { return bus.isConnected(); }));

    int failures = 0;
    const auto reveal = [&](const QDBusConnection &on) {
        showInFileManager(on, u"/home/sam/50% #1.txt"_s, window, [&] { ++failures; });
    };
    reveal(bus);
    ASSERT_TRUE(waitFor([&] { return !shown.isEmpty(); }));
    EXPECT_EQ(shown.first(), QStringList{u"file:///home/sam/50%25%20%231.txt"_s});

    refuses = true;
    reveal(bus);
    ASSERT_TRUE(waitFor([&] { return failures == 1; }));
    reveal(QDBusConnection(u"no such bus"_s));
    ASSERT_TRUE(waitFor([&] { return failures == 2; }));
    EXPECT_EQ(shown.size(), 1);
    QDBusConnection::disconnectFromPeer(u"manager"_s);
}

TEST(StayAwakeTests, holdsSleepAndLogOutAsLongAsItIsOn) {
    QList<int> locks; // the other ends of those that were given
    QStringList asked;
    QSet<QString> logOutRequests; // that are open
    int logOutQuestions = 0;
    // A login manager, which is the desktop's portal as well.
    Stub manager([&](const QDBusMessage &message, const QDBusConnection &bus) {
        if (message.interface() == u"org.freedesktop.portal.Inhibit"_s) {
            EXPECT_EQ(message.signature(), u"sua{sv}"_s);
            EXPECT_EQ(message.arguments().value(1).toUInt(), 1U) << "the log-out alone";
            const QString path = u"/request/%1"_s.arg(++logOutQuestions);
            logOutRequests.insert(path);
            return bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
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
    });
    const auto isHeld = [&] { // the newest lock, by the program
        char byte = 0;
        return read(locks.last(), &byte, 1) < 0; // the end of the pipe, once the other end is closed
    };
    QDBusServer server;
    manager.serve(server);
    {
        const QDBusConnection bus = QDBusConnection::connectToPeer(server.address(), u"login"_s);
        StayAwake awake(bus, bus);
        awake.setOn(true);
        awake.setOn(true);
        ASSERT_TRUE(waitFor([&] { return locks.size() == 1; }));
        EXPECT_EQ(asked, QStringList(u"sleep:idle block"_s));
        EXPECT_TRUE(isHeld());
        EXPECT_TRUE(waitFor([&] { return logOutRequests.size() == 1; }));
        awake.setOn(false);
        EXPECT_TRUE(waitFor([&] { return !isHeld() && logOutRequests.isEmpty(); }));
        awake.setOn(true);
        awake.setOn(false); // before it was given
        ASSERT_TRUE(waitFor([&] {
            return locks.size() == 2 && !isHeld() && logOutQuestions == 2 && logOutRequests.isEmpty();
        }));
        awake.setOn(true);
        ASSERT_TRUE(waitFor([&] { return locks.size() == 3 && logOutQuestions == 3; }));
    }
    EXPECT_TRUE(waitFor([&] { return !isHeld(); })) << "it ends with it";
    QDBusConnection::disconnectFromPeer(u"login"_s);
    const QDBusConnection none(u"no such bus"_s);
    StayAwake(none, none).setOn(true);
    std::for_each(locks.begin(), locks.end(), &close);
}

} // namespace
} // namespace vantrel
