#include "App/System/UsageAnalytics.h"

#include "Analytics/TelemetryDeck.h"
#include "App/System/Settings.h"
#include "App/System/Version.h"
#include "Theme/AppTheme.h"

#include <QGuiApplication>
#include <QScreen>

namespace vantrel {

namespace {

/// The product at the analytics service.
QString analyticsAppID() {
    return QStringLiteral("3C9A5E21-7B4D-4F08-9E6A-1D2C3B4A5F60");
}

ApplicationFacts applicationFacts() {
    ApplicationFacts facts;
    facts.version = version::shortVersion();
    facts.buildNumber = version::build();
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        facts.screenWidth = screen->geometry().width();
        facts.screenHeight = screen->geometry().height();
        facts.screenScaleFactor = screen->devicePixelRatio();
    }
    facts.colorScheme = AppTheme::scheme() == ColorScheme::dark ? ApplicationFacts::ColorScheme::Dark
                                                                : ApplicationFacts::ColorScheme::Light;
    facts.layoutDirection = QGuiApplication::layoutDirection();
    return facts;
}

} // namespace

void startUsageAnalytics(const Settings &settings) {
    TelemetryManagerConfiguration configuration(analyticsAppID(), {}, QUrl(version::analyticsService()),
                                                QStringLiteral("com.vantrelapp"));
    configuration.analyticsDisabled = settings.analyticsDisabled();
    TelemetryEnvironment environment;
    environment.applicationFacts = applicationFacts;
    if (!TelemetryDeck::initialize(std::move(configuration), std::move(environment)))
        return;
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, qGuiApp,
                     [](Qt::ApplicationState state) {
                         state == Qt::ApplicationActive ? TelemetryDeck::returnedToForeground()
                                                        : TelemetryDeck::movedToBackground();
                     });
}

} // namespace vantrel
