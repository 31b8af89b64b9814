#include "App/AboutView.h"
#include "App/AppTheme.h"
#include "App/ApplicationMenu.h"
#include "App/CommandLine.h"
#include "App/Product.h"
#include "App/Settings.h"
#include "App/SingleInstance.h"
#include "App/TitleBar.h"
#include "App/Updater.h"
#include "App/Version.h"
#include "App/WindowChrome.h"

#include <QApplication>
#include <QIcon>
#include <QMainWindow>

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

    QApplication application(argc, argv);
    QApplication::setApplicationName(product::name());
    QApplication::setApplicationVersion(version::shortVersion());
    QApplication::setDesktopFileName(product::identifier());
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/vantrel.svg")));
    if (isDone(parseCommandLine(QApplication::arguments(), UnknownArguments::refused)))
        return 2;

    SingleInstance instance(SingleInstance::userDirectory());
    if (instance.claim(qgetenv("XDG_ACTIVATION_TOKEN")) == SingleInstance::Role::second)
        return 0;

    Settings settings;
    settings.storeToolTipDelay();
    AppTheme::setScheme(settings.appearancePreference());
    QApplication::setPalette(AppTheme::palette());

    Updater updater(Updater::builtIn());
    updater.start();

    QMainWindow window;
    window.setWindowTitle(product::name());
    window.setMinimumSize(1100, 720);
    window.resize(1280, 820);
    WindowChrome chrome(&window, [&settings] { return settings.doubleClickAction(); });
    ApplicationMenu menu(&window, &updater);
    if (QWidget *button = menu.createButton(chrome.titleBar()))
        chrome.titleBar()->addToolbarWidget(button);
    QObject::connect(&menu, &ApplicationMenu::aboutRequested, &window, [&window] {
        auto *about = new AboutView(&window);
        about->setAttribute(Qt::WA_DeleteOnClose);
        about->open();
    });
    QObject::connect(&instance, &SingleInstance::raiseRequested, &window,
                     [&window](const QByteArray &token) { bringToFront(&window, token); });
    window.show();
    return QApplication::exec();
}
