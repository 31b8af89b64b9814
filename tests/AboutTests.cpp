#include "App/Sheets/AboutTexts.h"
#include "App/Sheets/AboutView.h"
#include "App/System/CommandLine.h"
#include "App/System/Product.h"
#include "App/System/Settings.h"
#include "App/System/Version.h"
#include "App/Updates/Updater.h"
#include "App/Window/ApplicationMenu.h"
#include "App/Window/WindowChrome.h"
#include "Theme/AppTheme.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QDesktopServices>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

namespace vantrel {
namespace {

BuildInformation build(std::optional<QString> shortVersion, std::optional<QString> number) {
    return {.shortVersion = std::move(shortVersion), .build = std::move(number), .copyright = std::nullopt};
}

TEST(AboutTexts, FeedbackSurvivesTheAddress) {
    const AboutTexts texts(build(QStringLiteral("1.4"), QStringLiteral("27")));
    EXPECT_EQ(texts.feedbackUrl().toEncoded().toStdString(),
              "mailto:feedback@vantrelapp.com?subject=Vantrel%20feedback%20%28v1.4%29"
              "&body=%0A%0A---%0AVantrel%20Version%201.4%20%2827%29");

    // Whatever the texts hold, a mail program reads them back from the address.
    for (const QString &text : {QStringLiteral("a&b=c?d#e"), QStringLiteral("1+1 = 2"),
                                QStringLiteral("100% sure%20"), QStringLiteral("line\none;two"),
                                QStringLiteral("“grüße” 漢字 😀"), QStringLiteral("\"<b>'\\`|^{}[]")}) {
        const QUrl url = mailUrl(product::feedbackAddress(), text, text + text);
        EXPECT_TRUE(url.isValid());
        EXPECT_EQ(url.scheme(), QStringLiteral("mailto"));
        EXPECT_EQ(url.path(), product::feedbackAddress());
        for (const char byte : url.toEncoded())
            EXPECT_TRUE(byte > ' ' && byte < 0x7f)
                << "not fit for an address: " << url.toEncoded().toStdString();
        const QList<QByteArray> items = url.toEncoded().split('?').value(1).split('&');
        ASSERT_EQ(items.size(), 2) << url.toEncoded().toStdString();
        EXPECT_EQ(QUrl::fromPercentEncoding(items.at(0)), QStringLiteral("subject=") + text);
        EXPECT_EQ(QUrl::fromPercentEncoding(items.at(1)), QStringLiteral("body=") + text + text);
        EXPECT_FALSE(url.toEncoded().contains('+')) << "some programs read a plus as a space";
    }
}

/// Stands in for the browser and the mail program.
class OpenedAddresses : public QObject {
    Q_OBJECT

public:
    OpenedAddresses() {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open");
        QDesktopServices::setUrlHandler(QStringLiteral("mailto"), this, "open");
    }
    ~OpenedAddresses() override {
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("mailto"));
    }

    QList<QUrl> addresses;

public Q_SLOTS:
    void open(const QUrl &address) { addresses.append(address); }
};

class AboutViewTest : public ::testing::Test {
protected:
    QMainWindow window;
    OpenedAddresses opened;

    void SetUp() override {
        window.resize(1280, 820);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    static QAbstractButton *button(QWidget &view, const char *name) {
        auto *found = view.findChild<QAbstractButton *>(QString::fromLatin1(name));
        if (!found)
            throw std::runtime_error(std::string("no button ") + name);
        return found;
    }
};

TEST_F(AboutViewTest, ShowsItsTextsAndOpensItsLinks) {
    AboutView about(&window, AboutTexts(build(QStringLiteral("1.4"), QStringLiteral("27"))));
    about.open();
    QStringList shown;
    for (const QLabel *label : about.findChildren<QLabel *>())
        shown.append(label->text());
    EXPECT_EQ(shown, QStringList({QStringLiteral("Vantrel (1.4)"),
                                  QStringLiteral("Transfer files between Mac and Android"),
                                  QStringLiteral("Connect your phone with USB debugging on."),
                                  QStringLiteral("Found a bug or have an idea?"), product::copyright()}));
    EXPECT_EQ(about.width(), 340);
    EXPECT_TRUE(about.isModal());

    QAbstractButton *site = button(about, "about.website");
    EXPECT_EQ(site->toolTip(), QStringLiteral("Open ") + product::websiteDomain());
    site->click();
    button(about, "about.feedback")->click();
    ASSERT_EQ(opened.addresses.size(), 2);
    EXPECT_EQ(opened.addresses.at(0), QUrl(product::website()));
    EXPECT_EQ(QUrlQuery(opened.addresses.at(1)).queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded),
              QStringLiteral("Vantrel feedback (v1.4)"));
    EXPECT_TRUE(about.isVisible()) << "a link leaves it open";
}

TEST_F(AboutViewTest, ClosesOnReturnWhereverTheKeyboardIs) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        for (const char *focused : {"", "about.website", "about.close"}) {
            AboutView about(&window);
            about.open();
            ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &about; }));
            if (*focused)
                button(about, focused)->setFocus();
            QTest::keyClick(about.windowHandle(), key);
            EXPECT_FALSE(about.isVisible()) << focused << ' ' << key;
        }
    }
    EXPECT_TRUE(opened.addresses.isEmpty()) << "Return on a link closes, too";
    AboutView about(&window);
    about.open();
    button(about, "about.close")->click();
    EXPECT_FALSE(about.isVisible());
    EXPECT_EQ(window.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly), QList<QWidget *>{&about})
        << "the window is no longer dimmed";
}

class ApplicationMenuTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    Settings settings{directory.filePath(QStringLiteral("settings.ini"))};
    QMainWindow window;

    QList<Sheet *> openSheets() const {
        QList<Sheet *> open = window.findChildren<Sheet *>();
        open.removeIf([](const Sheet *sheet) { return !sheet->isVisible(); });
        return open;
    }
    /// What assistive technology finds in an action's menu.
    static QStringList itemsBeside(QAction *action) {
        auto *menu = qobject_cast<QMenu *>(action->associatedObjects().constFirst());
        EXPECT_TRUE(menu->toolTipsVisible());
        const auto *list = QAccessible::queryAccessibleInterface(menu);
        QStringList names;
        for (int i = 0; i < list->childCount(); ++i)
            names.append(list->child(i)->text(QAccessible::Name));
        return names;
    }
};

TEST_F(ApplicationMenuTest, OffersItsCommands) {
    Updater updater(
        {.feed = QUrl(QStringLiteral("http://localhost/feed")), .installed = {QStringLiteral("1"), {}}});
    ApplicationMenu menu(&window, &updater, &settings);
    EXPECT_EQ(menu.aboutAction()->text(), QStringLiteral("About Vantrel"));
    EXPECT_EQ(menu.updateAction()->text(), QStringLiteral("Check for Updates…"));
    EXPECT_EQ(menu.quitAction()->text(), QStringLiteral("Quit Vantrel"));
    EXPECT_EQ(menu.quitAction()->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
    EXPECT_EQ(menu.analyticsAction() != nullptr, !version::analyticsService().isEmpty());

    EXPECT_FALSE(menu.updateAction()->isEnabled());
    updater.start();
    EXPECT_TRUE(menu.updateAction()->isEnabled());

    QSignalSpy about(&menu, &ApplicationMenu::aboutRequested);
    menu.aboutAction()->trigger();
    EXPECT_EQ(about.count(), 1);
    menu.quitAction()->trigger();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ApplicationMenuTest, SaysWhyThereAreNoUpdatesAndWhatCannotBeStored) {
    Updater updater({});
    updater.start();
    ApplicationMenu menu(&window, &updater, &settings);
    EXPECT_FALSE(menu.updateAction()->isEnabled());
    EXPECT_EQ(menu.updateAction()->toolTip(), QStringLiteral("This build has no update feed"));
    EXPECT_TRUE(itemsBeside(menu.updateAction()).contains(menu.updateAction()->toolTip()));

    EXPECT_FALSE(menu.problemAction()->isVisible());
    QDir(directory.path()).mkdir(QStringLiteral("settings.ini"));
    settings.setAppearancePreference(ColorScheme::dark);
    EXPECT_FALSE(settings.save());
    EXPECT_TRUE(menu.problemAction()->isVisible());
    EXPECT_EQ(menu.problemAction()->toolTip(), settings.problem());
    QDir(directory.path()).rmdir(QStringLiteral("settings.ini"));
    EXPECT_TRUE(settings.save());
    EXPECT_FALSE(menu.problemAction()->isVisible());
}

TEST_F(ApplicationMenuTest, ShowsTheLatestOutcomeAloneAndNeverOverAnotherSheet) {
    Updater updater(
        {.feed = QUrl(QStringLiteral("http://localhost/feed")), .installed = {QStringLiteral("1"), {}}});
    updater.start();
    ApplicationMenu menu(&window, &updater, &settings);
    window.show();
    QPointer<AboutView> about = new AboutView(&window);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->open();
    menu.updateAction()->trigger(); // plain HTTP: refused at once
    menu.updateAction()->trigger();
    EXPECT_EQ(openSheets(), QList<Sheet *>{about});
    about->close();
    ASSERT_EQ(openSheets().size(), 1);
    EXPECT_EQ(openSheets().constFirst()->findChild<QLabel *>(QStringLiteral("update.detail"))->text(),
              QStringLiteral("The address of the update feed is not an HTTPS address."));
    UpdateResult upToDate;
    upToDate.kind = UpdateResult::Kind::upToDate;
    Q_EMIT updater.checked(upToDate);
    ASSERT_EQ(openSheets().size(), 1);
    Sheet *sheet = openSheets().constFirst();
    EXPECT_THAT(sheet->findChild<QLabel *>(QStringLiteral("update.detail"))->text().toStdString(),
                ::testing::HasSubstr("is the newest version."));
    EXPECT_FALSE(sheet->findChild<QAbstractButton *>(QStringLiteral("update.open")));
    sheet->findChild<QAbstractButton *>(QStringLiteral("update.close"))->click();
    EXPECT_TRUE(openSheets().isEmpty());
}

TEST_F(ApplicationMenuTest, SwitchesUsageStatistics) {
    Updater updater({});
    const QByteArray doNotTrack = qgetenv("DO_NOT_TRACK");
    qputenv("DO_NOT_TRACK", "1");
    const ApplicationMenu grey(&window, &updater, &settings, true);
    EXPECT_FALSE(grey.analyticsAction()->isEnabled());
    EXPECT_TRUE(
        itemsBeside(grey.analyticsAction()).contains(QStringLiteral("Off, because DO_NOT_TRACK is set")));
    qunsetenv("DO_NOT_TRACK");
    ApplicationMenu menu(&window, &updater, &settings, true);
    EXPECT_TRUE(menu.analyticsAction()->isChecked());
    menu.analyticsAction()->trigger();
    EXPECT_TRUE(settings.analyticsDisabled());
    EXPECT_FALSE(ApplicationMenu(&window, &updater, &settings, true).analyticsAction()->isChecked());
    menu.analyticsAction()->trigger();
    EXPECT_FALSE(settings.analyticsDisabled());
    qputenv("DO_NOT_TRACK", doNotTrack);
}

TEST(CommandLine, IsUnderstoodOrRefused) {
    using Action = CommandLine::Action;
    struct Case {
        QStringList arguments;
        Action action;
        Action beforeTheToolkit; ///< with unknown arguments ignored
        std::string text;        ///< part of it
    };
    const std::string versionLine = "Vantrel " + version::shortVersion().toStdString();
    for (const Case &test : {
             Case{{}, Action::run, Action::run, ""},
             Case{{QStringLiteral("--version")}, Action::inform, Action::inform, versionLine},
             Case{{QStringLiteral("-v")}, Action::inform, Action::inform, versionLine},
             Case{{QStringLiteral("--help")}, Action::inform, Action::inform, "Usage: vantrel"},
             Case{{QStringLiteral("-h")}, Action::inform, Action::inform, "Usage: vantrel"},
             Case{{QStringLiteral("--bogus")}, Action::refuse, Action::run, "'bogus'"},
             Case{{QStringLiteral("-platform"), QStringLiteral("vnc:port=1")},
                  Action::refuse,
                  Action::run,
                  "platform"},
             Case{{QStringLiteral("/some/file")}, Action::refuse, Action::run, "/some/file"},
             Case{{QStringLiteral("--version=2")}, Action::refuse, Action::inform, "version"},
         }) {
        const QStringList arguments = QStringList(QStringLiteral("vantrel")) + test.arguments;
        const CommandLine strict = parseCommandLine(arguments, UnknownArguments::refused);
        EXPECT_EQ(strict.action, test.action) << arguments.join(u' ').toStdString();
        EXPECT_THAT(strict.text.toStdString(), ::testing::HasSubstr(test.text));
        EXPECT_EQ(parseCommandLine(arguments, UnknownArguments::ignored).action, test.beforeTheToolkit)
            << arguments.join(u' ').toStdString();
    }
}

} // namespace
} // namespace vantrel

#include "AboutTests.moc"
