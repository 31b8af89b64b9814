#include "App/System/UsageAnalytics.h"

#include "Analytics/TelemetryDeck.h"
#include "App/System/Settings.h"
#include "App/System/Version.h"
#include "Theme/AppTheme.h"

#include <QGuiApplication>
#include <QScreen>

namespace vantrel {

namespace {

ApplicationFacts applicationFacts() {
    ApplicationFacts facts;
    facts.version = version::shortVersion();
    facts.buildNumber = version::build();
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        facts.screenWidth = screen->geometry().width();
        facts.screenHeight = screen->geometry().height();
        facts.screenScaleFactor = screen->devicePixelRatio();
    }
    facts.colorScheme = AppTheme::scheme() == ColorScheme::dark ? ApplicationFacts::ColorScheme::dark
                                                                : ApplicationFacts::ColorScheme::light;
    facts.layoutDirection = QGuiApplication::layoutDirection();
    return facts;
}

} // namespace

bool hasAnalyticsService() {
    return !version::analyticsService().isEmpty();
}

void startUsageAnalytics(const Settings &settings, const QUrl &service) {
    if (service.isEmpty())
        return;
    const TelemetryManagerConfiguration configuration(QStringLiteral("3C9A5E21-7B4D-4F08-9E6A-1D2C3B4A5F60"),
                                                      {}, service, QStringLiteral("com.vantrelapp"));
    TelemetryEnvironment environment;
    environment.applicationFacts = applicationFacts;
    const auto follow = [configuration, environment](bool disabled) {
        if (disabled)
            TelemetryDeck::forget(configuration, environment);
        else
            TelemetryDeck::initialize(configuration, environment);
    };
    follow(settings.analyticsDisabled());
    QObject::connect(&settings, &Settings::analyticsDisabledChanged, qGuiApp, follow);
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, qGuiApp,
                     [](Qt::ApplicationState state) {
                         state == Qt::ApplicationActive ? TelemetryDeck::returnedToForeground()
                                                        : TelemetryDeck::movedToBackground();
                     });
}

} // namespace vantrel
