#include "DemoTourPhone.h"
#include "RealTourPhone.h"
#include "Tour.h"
#include "TourError.h"

#include "ADB/ADBClient.h"
#include "App/Sheets/TextPrompt.h"
#include "App/System/Product.h"
#include "App/System/QtDesktop.h"
#include "App/System/Settings.h"
#include "App/Updates/Updater.h"
#include "App/Window/MainWindow.h"
#include "Kit/AppStyle.h"
#include "Worker/Worker.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <cstdio>
#include <memory>

namespace {

using namespace vantrel;
using namespace vantrel::tour;

void write(const QString &path, qsizetype size) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QByteArray bytes;
    for (qsizetype i = 0; i < size; ++i)
        bytes += char('a' + (i * i) % 23);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != size)
        throw TourError(path + QStringLiteral(": ") + file.errorString());
}

/// A computer's home folder as one might find it.
void furnishHome(const QString &home) {
    for (const char *folder : {"Desktop", "Documents", "Downloads", "Music", "Pictures", "Videos"})
        QDir().mkpath(home + QLatin1Char('/') + QLatin1StringView(folder));
    write(home + QStringLiteral("/Invoice March.pdf"), 214'300);
    write(home + QStringLiteral("/Notes.txt"), 3'120);
    write(home + QStringLiteral("/Route.gpx"), 48'950);
    write(home + QStringLiteral("/backup-2024.zip"), 1'840'200);
}

/// Takes the tour; the exit status.
int run(const QCommandLineParser &options, const QString &builtHere, const QTemporaryDir &folder) {
    const QString demoResources = builtHere + QStringLiteral("/demo");
    const QString home = folder.filePath(QStringLiteral("sam"));
    std::unique_ptr<TourPhone> phone;
    const auto adb = ADBClient::resolveADBPath();
    QString serial = options.value(QStringLiteral("serial"));
    if (serial.isEmpty() && !options.isSet(QStringLiteral("demo")) && adb)
        serial = RealTourPhone::firstSerial(*adb);

    try {
        if (serial.isEmpty() && options.isSet(QStringLiteral("phone")))
            throw TourError(QStringLiteral("no phone is ready"));
        furnishHome(home);
        const Pictures pictures(options.value(QStringLiteral("output")));
        // The demo phone, unplugged, is also how a real one stays hidden until its time.
        phone = std::make_unique<DemoTourPhone>(demoResources, folder.filePath(QStringLiteral("phone")));
        if (!serial.isEmpty()) {
            if (!adb)
                throw TourError(QStringLiteral("there is no adb"));
            phone = std::make_unique<RealTourPhone>(*adb, serial, demoResources);
        }
        std::printf("tour on %s\n", serial.isEmpty() ? "the demo phone" : qPrintable(serial));

        Settings settings(folder.filePath(QStringLiteral("settings.ini")));
        Updater updater{Updater::Configuration()};
        QtDesktop desktop(&askForText);
        MainWindow window(desktop, settings, updater);
        desktop.setWindow(&window);
        window.show();
        if (!QTest::qWaitFor([&window] { return window.isFurnished(); }))
            throw TourError(QStringLiteral("the window does not appear"));
        const bool isWatched = QGuiApplication::platformName() != QStringLiteral("offscreen");
        const int pace = options.isSet(QStringLiteral("pace")) ? options.value(QStringLiteral("pace")).toInt()
                         : isWatched                           ? 400
                                                               : 0;
        const Hand hand(window, std::chrono::milliseconds(pace));
        Tour tour(window, *phone, hand, pictures, home + QStringLiteral("/Downloads"));
        try {
            tour.take();
        } catch (const TourError &) {
            pictures.take(window, QStringLiteral("failure"));
            throw;
        }
        window.close();
    } catch (const TourError &error) {
        std::fprintf(stderr, "tour: %s\n", error.what());
        return 1;
    }
    std::printf("pictures in %s\n", qPrintable(options.value(QStringLiteral("output"))));
    return 0;
}

/// Describes a screen like those that people have: the one without a display is smaller, and its menus do not
/// open where their buttons are.
QString screenFile(const QTemporaryDir &folder) {
    const QString path = folder.filePath(QStringLiteral("screen.json"));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(R"({"screens": [{"name": "tour", "x": 0, "y": 0, "width": 1920, "height": 1080,
                       "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    return path;
}

} // namespace

int main(int argc, char **argv) {
    // Nothing of the user's own is touched: settings, caches and the home folder are the tour's.
    const QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/vantrel-XXXXXX"));
    qputenv("HOME", QFile::encodeName(folder.filePath(QStringLiteral("sam"))));
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        qputenv(variable, QFile::encodeName(folder.filePath(QStringLiteral("xdg"))));
#ifdef Q_OS_LINUX
    const bool hasDisplay =
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if ((!hasDisplay && platform.isEmpty()) || platform == "offscreen")
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screenFile(folder).toUtf8());
#endif
    QApplication application(argc, argv);
    QApplication::setApplicationName(product::name());
    AppStyle::install(application, Settings::toolTipDelay);

    const QString builtHere = QDir::cleanPath(QApplication::applicationDirPath() + QStringLiteral("/.."));
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("Drives the window through everything it can do and checks every copied byte."));
    options.addHelpOption();
    options.addOption(
        {QStringLiteral("demo"), QStringLiteral("Use the demo phone even if one is plugged in.")});
    options.addOption({QStringLiteral("phone"), QStringLiteral("Use the phone that is plugged in.")});
    options.addOption({QStringLiteral("serial"), QStringLiteral("Use the phone with this serial."),
                       QStringLiteral("serial")});
    options.addOption({QStringLiteral("output"), QStringLiteral("Folder for the pictures."),
                       QStringLiteral("folder"), QDir::cleanPath(builtHere + QStringLiteral("/../tour"))});
    options.addOption({QStringLiteral("pace"), QStringLiteral("Milliseconds between two moves."),
                       QStringLiteral("milliseconds")});
    options.process(application);

    const int status = run(options, builtHere, folder);
    Background::stop(&ADBClient::stopRunningTools);
    return status;
}
