#include "support/Environment.h"
#include "support/OpenedAddresses.h"

#include "App/Sheets/AboutTexts.h"
#include "App/Sheets/AboutView.h"
#include "App/System/CommandLine.h"
#include "App/System/Product.h"
#include "App/System/Settings.h"
#include "App/System/Version.h"
#include "App/Updates/Updater.h"
#include "App/Window/ApplicationMenu.h"
#include "App/Window/WindowChrome.h"
#include "MacFiles/ThisComputer.h"
#include "Theme/AppTheme.h"

#include <QtTest>
#include <QtWidgets>
#include <gmock/gmock.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using ::testing::HasSubstr;

const AboutTexts texts({.shortVersion = u"1.4"_s, .build = u"27"_s, .copyright = std::nullopt});

TEST(AboutTextsTests, feedbackSurvivesTheAddress) {
    EXPECT_EQ(texts.feedbackUrl().toEncoded().toStdString(),
              "mailto:feedback@vantrelapp.com?subject=Vantrel%20feedback%20%28v1.4%29"
              "&body=%0A%0A---%0AVantrel%20Version%201.4%20%2827%29");

    // Whatever the texts hold, a mail program reads them back from the address.
    for (const QString &text : {u"a&b=c?d#e"_s, u"1+1 = 2"_s, u"100% sure%20"_s, u"line\none;two"_s,
                                u"“grüße” 漢字 😀"_s, u"\"<b>'\\`|^{}[]"_s}) {
        const QUrl url = mailUrl(product::feedbackAddress(), text, text + text);
        EXPECT_EQ(url.path(), product::feedbackAddress());
        EXPECT_FALSE(QRegularExpression(u"[^!-~]|[+]"_s).match(QString::fromUtf8(url.toEncoded())).hasMatch())
            << "not fit for an address, or read as a space: " << url.toEncoded().toStdString();
        const QList<QByteArray> items = url.toEncoded().split('?').value(1).split('&');
        ASSERT_EQ(items.size(), 2) << url.toEncoded().toStdString();
        EXPECT_EQ(QUrl::fromPercentEncoding(items.at(0)), u"subject="_s + text);
        EXPECT_EQ(QUrl::fromPercentEncoding(items.at(1)), u"body="_s + text + text);
    }
}

TEST(AboutViewTests, showsItsTextsAndOpensItsLinks) {
    QMainWindow window;
    window.resize(800, 600);
    window.show();
    const OpenedAddresses opened({u"https"_s, u"mailto"_s});
    AboutView about(&window, texts);
    about.open();
    QStringList shown;
    for (const QLabel *label : about.findChildren<QLabel *>())
        shown.append(label->text());
    EXPECT_EQ(shown,
              QStringList({u"Vantrel (1.4)"_s, u"Transfer files between %1 and Android"_s.arg(thisComputer()),
                           u"Connect your phone with USB debugging on."_s, u"Found a bug or have an idea?"_s,
                           product::copyright()}));
    EXPECT_EQ(about.findChild<QWidget *>(u"sheet.card"_s)->width(), 340);

    QAbstractButton *site = about.findChild<QAbstractButton *>(u"about.website"_s);
    EXPECT_EQ(site->toolTip(), u"Open "_s + product::websiteDomain());
    site->click();
    about.findChild<QAbstractButton *>(u"about.feedback"_s)->click();
    EXPECT_EQ(opened.addresses, (QList<QUrl>{QUrl(product::website()), texts.feedbackUrl()}));
    EXPECT_TRUE(about.isVisible()) << "a link leaves it open";
}

class ApplicationMenuTests : public ::testing::Test {
protected:
    QTemporaryDir directory;
    Settings settings{directory.filePath(u"settings.ini"_s)};
    QMainWindow window;
    Updater never{{}};
    Updater updater{{.feed = QUrl(u"http://localhost/feed"_s), .installed = {u"1"_s, {}}}};

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

TEST_F(ApplicationMenuTests, saysWhyThereAreNoUpdatesAndWhatCannotBeStored) {
    never.start();
    ApplicationMenu menu(&window, &never, &settings);
    EXPECT_EQ(menu.analyticsAction() != nullptr, !version::analyticsService().isEmpty());
    EXPECT_EQ(menu.quitAction()->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
    EXPECT_FALSE(menu.updateAction()->isEnabled());
    EXPECT_EQ(menu.updateAction()->toolTip(), u"This build has no update feed"_s);
    EXPECT_TRUE(itemsBeside(menu.updateAction()).contains(menu.updateAction()->toolTip()));

    EXPECT_FALSE(menu.problemAction()->isVisible());
    QDir(directory.path()).mkdir(u"settings.ini"_s);
    settings.setAppearancePreference(ColorScheme::dark);
    EXPECT_FALSE(settings.save());
    EXPECT_TRUE(menu.problemAction()->isVisible());
    EXPECT_EQ(menu.problemAction()->toolTip(), settings.problem());
    QDir(directory.path()).rmdir(u"settings.ini"_s);
    EXPECT_TRUE(settings.save());
    EXPECT_FALSE(menu.problemAction()->isVisible());
}

TEST_F(ApplicationMenuTests, showsTheLatestOutcomeAloneAndNeverOverAnotherSheet) {
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
    EXPECT_EQ(openSheets().constFirst()->findChild<QLabel *>(u"update.detail"_s)->text(),
              u"The address of the update feed is not an HTTPS address."_s);
    UpdateResult upToDate;
    upToDate.kind = UpdateResult::Kind::upToDate;
    Q_EMIT updater.checked(upToDate);
    ASSERT_EQ(openSheets().size(), 1);
    Sheet *sheet = openSheets().constFirst();
    EXPECT_THAT(sheet->findChild<QLabel *>(u"update.detail"_s)->text().toStdString(),
                HasSubstr("is the newest version."));
    EXPECT_FALSE(sheet->findChild<QAbstractButton *>(u"update.accept"_s));
    sheet->findChild<QAbstractButton *>(u"update.close"_s)->click();
    EXPECT_TRUE(openSheets().isEmpty());
}

TEST_F(ApplicationMenuTests, switchesUsageStatistics) {
    const Environment environment(Environment::Values{{"DO_NOT_TRACK", "1"}});
    const ApplicationMenu grey(&window, &never, &settings, true);
    EXPECT_FALSE(grey.analyticsAction()->isEnabled());
    EXPECT_TRUE(itemsBeside(grey.analyticsAction()).contains(u"Off, because DO_NOT_TRACK is set"_s));
    qunsetenv("DO_NOT_TRACK");
    ApplicationMenu menu(&window, &never, &settings, true);
    EXPECT_TRUE(menu.analyticsAction()->isChecked());
    menu.analyticsAction()->trigger();
    EXPECT_TRUE(settings.analyticsDisabled());
    EXPECT_FALSE(ApplicationMenu(&window, &never, &settings, true).analyticsAction()->isChecked());
    menu.analyticsAction()->trigger();
    EXPECT_FALSE(settings.analyticsDisabled());
}

TEST(CommandLineTests, isUnderstoodOrRefused) {
    using enum CommandLine::Action;
    const std::string versionLine = "Vantrel " + version::shortVersion().toStdString();
    // What is done, what before the toolkit has taken its own arguments, and part of what is said.
    for (const auto &[arguments, action, beforeTheToolkit, said] :
         {std::tuple(u""_s, run, run, std::string()),
          {u"--version"_s, inform, inform, versionLine},
          {u"-v"_s, inform, inform, versionLine},
          {u"--help"_s, inform, inform, "Usage: vantrel"},
          {u"-h"_s, inform, inform, "Usage: vantrel"},
          {u"--bogus"_s, refuse, run, "'bogus'"},
          {u"-platform vnc:port=1"_s, refuse, run, "platform"},
          {u"/some/file"_s, refuse, run, "/some/file"},
          {u"--version=2"_s, refuse, inform, "version"}}) {
        SCOPED_TRACE(arguments.toStdString());
        const QStringList all = QStringList(u"vantrel"_s) + arguments.split(u' ', Qt::SkipEmptyParts);
        const CommandLine strict = parseCommandLine(all, UnknownArguments::refused);
        EXPECT_EQ(strict.action, action);
        EXPECT_THAT(strict.text.toStdString(), HasSubstr(said));
        EXPECT_EQ(parseCommandLine(all, UnknownArguments::ignored).action, beforeTheToolkit);
    }
}

} // namespace
} // namespace vantrel
