#include "ADB/ADBClient.h"
#include "App/Sheets/TextPrompt.h"
#include "App/System/CommandLine.h"
#ifndef Q_OS_MACOS
#include "App/System/DesktopPreferences.h"
#include "Thumbnails/DesktopThumbnailer.h"
#endif
#include "App/System/FontConfiguration.h"
#include "App/System/Product.h"
#include "App/System/QtDesktop.h"
#include "App/System/QuitSignals.h"
#include "App/System/Settings.h"
#include "App/System/SingleInstance.h"
#include "App/System/UsageAnalytics.h"
#include "App/System/Version.h"
#include "App/Updates/Updater.h"
#include "App/Window/Activation.h"
#include "App/Window/CopyReports.h"
#include "App/Window/MainWindow.h"
#include "Kit/AppStyle.h"
#include "Worker/Worker.h"

#include <QApplication>
#include <QLocale>

#include <cstdio>

namespace {

using namespace vantrel;

/// Prints what the command line asks for; true when that was all.
bool isDone(const CommandLine &commandLine) {
    if (commandLine.action == CommandLine::Action::run)
        return false;
    std::FILE *stream = commandLine.action == CommandLine::Action::inform ? stdout : stderr;
    std::fputs(commandLine.text.toLocal8Bit().constData(), stream);
    return true;
}

/// For those who started the program from a terminal; the window says it in its menu.
void printProblem(const QString &problem) {
    if (!problem.isEmpty())
        std::fprintf(stderr, "vantrel: %s\n", problem.toLocal8Bit().constData());
}

QStringList toArguments(int argc, char **argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

} // namespace

int main(int argc, char **argv) {
    if (isDone(parseCommandLine(toArguments(argc, argv), UnknownArguments::ignored)))
        return 0;

    const QByteArray activationToken = SingleInstance::activationToken();
    QApplication application(argc, argv);
    QApplication::setApplicationName(product::name());
    QApplication::setApplicationVersion(version::shortVersion());
    QApplication::setDesktopFileName(product::identifier());
    if (isDone(parseCommandLine(QApplication::arguments(), UnknownArguments::refused)))
        return 2;

    // The program has no translation that the toolkit could take the direction from.
    if (QLocale::system().textDirection() == Qt::RightToLeft)
        QApplication::setLayoutDirection(Qt::RightToLeft);

    SingleInstance instance(SingleInstance::userDirectory());
    if (instance.claim(activationToken) == SingleInstance::Role::second)
        return 0;

    readFontConfiguration();
    Settings settings;
    QObject::connect(&settings, &Settings::problemChanged, &settings, &printProblem);
    settings.storeToolTipDelay();
    startUsageAnalytics(settings, QUrl(version::analyticsService()));
    Updater updater(Updater::builtIn());
    updater.start();
    AppStyle::install(application, Settings::toolTipDelay);
    AppTheme::setScheme(settings.appearancePreference());
    const QuitSignals quitSignals;

    int status = 0;
    {
        QtDesktop desktop(&askForText);
        MainWindow window(desktop, settings, updater);
        desktop.setWindow(&window);
        QObject::connect(&instance, &SingleInstance::raiseRequested, &window,
                         [&window](const QByteArray &token) { bringToFront(&window, token); });
#ifndef Q_OS_MACOS
        DesktopPreferences preferences(QDBusConnection::sessionBus());
        QObject::connect(&preferences, &DesktopPreferences::colorSchemePreferred, &window,
                         &MainWindow::followDesktop);
        QObject::connect(&preferences, &DesktopPreferences::reducedMotionPreferred, &window,
                         &AppStyle::setReducedMotion);
        QObject::connect(&preferences, &DesktopPreferences::contrastPreferred, &window,
                         &AppTheme::setContrast);
        QObject::connect(&preferences, &DesktopPreferences::textScalePreferred, &window,
                         &AppStyle::setTextScale);
        QObject::connect(&preferences, &DesktopPreferences::titleButtonsPreferred, &window,
                         &MainWindow::setTitleButtons);
        QObject::connect(&preferences, &DesktopPreferences::doubleClickPreferred, &window,
                         &QApplication::setDoubleClickInterval);
        const DesktopThumbnailer thumbnailer(window.pictures(), QDBusConnection::sessionBus());
        const SessionBus bus = QDBusConnection::sessionBus();
#else
        const SessionBus bus;
#endif
        const CopyReports reports(&window, window.state(), bus);
        window.show();
        status = QApplication::exec();
    }
    Background::stop(&ADBClient::stopRunningTools);
    awaitFontConfiguration(); // it may have been closed before it was furnished
    return status;
}
