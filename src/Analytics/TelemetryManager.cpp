#include "Analytics/TelemetryManager.h"

#include "Analytics/SessionManager.h"
#include "Analytics/SignalJson.h"
#include "Analytics/SignalManager.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSemaphore>

#include <cmath>

namespace vantrel {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto firstSessionDelay = 500ms;
constexpr qint64 longAbsence = 300; // seconds
// Closing the window may take 0.1 seconds longer than without analytics.
constexpr auto terminationPatience = 100ms;

/// What is known of a signal on the main thread.
struct Recorded {
    QDateTime receivedAt;
    QUuid sessionID;
    QString name;
    SignalParameters base; ///< gives way to the session statistics
    SignalParameters own;  ///< comes before them
    std::optional<double> floatValue;
    std::optional<QString> user;
};

Recorded gather(const TelemetryManagerConfiguration &configuration, const TelemetryEnvironment &environment,
                const QString &name, const SignalParameters &parameters = {},
                std::optional<double> floatValue = std::nullopt,
                const std::optional<QString> &user = std::nullopt) {
    const QDateTime now = environment.now().date;
    Recorded recorded{now, configuration.sessionID, name, configuration.defaultParameters(), {}, floatValue,
                      user};
    recorded.base.insert(defaultSignalParameters(environment.applicationFacts(), now));
    for (const SignalEnricher &enrich : configuration.metadataEnrichers)
        recorded.own.insert(enrich(name, user, floatValue));
    recorded.own.insert(parameters);
    return recorded;
}

void warnOfReservedNames(const TelemetryManagerConfiguration &configuration, const QString &name,
                         const SignalParameters &parameters) {
    const auto check = [&](const QString &what, const QString &part, const QString &prefix,
                           const QString &text) {
        if (text.startsWith("telemetrydeck."_L1, Qt::CaseInsensitive))
            configuration.log(LogLevel::error,
                              u"Sending %1 with reserved %2 'TelemetryDeck.' will cause unexpected behavior. "
                              "Please use another prefix instead."_s.arg(what, prefix));
        else if (reservedNames().contains(text.toLower()))
            configuration.log(LogLevel::error,
                              u"Sending %1 with reserved %2 '%3' will cause unexpected behavior. "
                              "Please use another %2 instead."_s.arg(what, part, text));
    };
    check(u"signal"_s, u"name"_s, u"prefix"_s, name);
    for (auto it = parameters.keyBegin(); it != parameters.keyEnd(); ++it)
        check(u"parameter"_s, u"key"_s, u"key prefix"_s, *it);
}

} // namespace

/// Everything that waits for the disk or the network. Lives on a thread of its own, made there by start().
class TelemetryWorker : public QObject {
public:
    TelemetryWorker(TelemetryManagerConfiguration configuration, const TelemetryEnvironment &environment)
        : m_configuration(std::make_shared<const TelemetryManagerConfiguration>(std::move(configuration))),
          m_environment(environment) {}

    void start() {
        m_preferences.emplace(
            preferencesPath(m_environment.preferencesDirectory, m_configuration->telemetryAppID));
        if (m_configuration->sessionStatsEnabled)
            m_sessions.emplace(*m_preferences, m_environment.now);
        m_signals.emplace(m_configuration, m_environment.cachesDirectory);
    }

    /// `started` is the signal of the new session.
    void startSession(const Recorded &started) {
        const auto firstDate = m_sessions ? m_sessions->startNewSession() : std::nullopt;
        if (firstDate) {
            Recorded install = started;
            install.name = u"TelemetryDeck.Acquisition.newInstallDetected"_s;
            install.own.insert(u"TelemetryDeck.Acquisition.firstSessionDate"_s, *firstDate);
            record(install);
        }
        if (m_configuration->sendNewSessionBeganSignal)
            record(started);
    }

    void record(const Recorded &recorded) {
        const auto user = recorded.user ? recorded.user : userIdentifier();
        if (!user)
            return;
        SignalParameters payload = recorded.base;
        if (m_sessions)
            payload.insert(m_sessions->retentionParameters());
        payload.insert(recorded.own);
        const SignalPostBody body{recorded.receivedAt,
                                  m_configuration->telemetryAppID,
                                  hashed(*user, m_configuration->salt),
                                  recorded.sessionID.toString(QUuid::WithoutBraces).toUpper(),
                                  recorded.name,
                                  recorded.floatValue,
                                  payload,
                                  m_configuration->testMode.value_or(false) ? u"true"_s : u"false"_s};
        if (m_configuration->logs(LogLevel::debug))
            m_configuration->log(
                LogLevel::debug,
                u"Process signal: "_s +
                    QString::fromUtf8(encodeSignals({body}, DateForm::network).value_or(QByteArray())));
        m_signals->push(body);
    }

    void updateSession() {
        if (m_sessions)
            m_sessions->updateSessionDuration();
    }

    void save() {
        updateSession();
        m_signals->save();
    }

private:
    /// Nothing when it cannot be kept: every start would look like another user's first.
    std::optional<QString> userIdentifier() {
        if (m_configuration->defaultUser)
            return m_configuration->defaultUser;
        const QString key = u"defaultUserIdentifier"_s;
        if (m_preferences->value(key).isEmpty())
            m_preferences->setValue(key, QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
        const QString problem = m_preferences->save();
        if (!problem.isEmpty()) {
            m_configuration->log(LogLevel::error, problem);
            return std::nullopt;
        }
        return m_preferences->value(key);
    }

    const std::shared_ptr<const TelemetryManagerConfiguration> m_configuration;
    const TelemetryEnvironment m_environment;
    std::optional<PreferencesFile> m_preferences;
    std::optional<SessionManager> m_sessions; // none when statistics are off
    std::optional<SignalManager> m_signals;
};

QString hashed(const QString &text, const QString &salt) {
    return QString::fromLatin1(
        QCryptographicHash::hash((text + salt).toUtf8(), QCryptographicHash::Sha256).toHex());
}

QString preferencesPath(const QString &directory, const QString &telemetryAppID) {
    return QDir(directory).filePath(u"com.telemetrydeck."_s + hashed(telemetryAppID, {}).last(12) +
                                    u".ini"_s);
}

TelemetryManager::TelemetryManager(TelemetryManagerConfiguration configuration,
                                   TelemetryEnvironment environment)
    : m_configuration(std::move(configuration)), m_environment(std::move(environment)),
      m_worker(new TelemetryWorker(m_configuration, m_environment)) {
    m_thread.setObjectName(u"vantrel.analytics"_s);
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::started, m_worker, &TelemetryWorker::start);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    m_thread.start(QThread::LowPriority);
    QTimer::singleShot(firstSessionDelay, this, [this] { setSessionID(QUuid::createUuid()); });
}

TelemetryManager::~TelemetryManager() {
    aboutToTerminate();
    abandon();
}

void TelemetryManager::signal(const QString &name, const SignalParameters &parameters,
                              std::optional<double> floatValue, const std::optional<QString> &customUserID) {
    const QString prefixedName = m_configuration.defaultSignalPrefix.value_or(QString()) + name;
    SignalParameters prefixed;
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it)
        prefixed.insert(m_configuration.defaultParameterPrefix.value_or(QString()) + it.key(), it.value());
    if (m_configuration.reservedParameterWarningsEnabled)
        warnOfReservedNames(m_configuration, prefixedName, prefixed);
    if (floatValue && !std::isfinite(*floatValue))
        floatValue.reset(); // JSON has no form for it: such a signal would hold up its whole batch for good
    post([recorded = gather(m_configuration, m_environment, prefixedName, prefixed, floatValue,
                            customUserID)](TelemetryWorker &worker) { worker.record(recorded); });
}

void TelemetryManager::setSessionID(const QUuid &sessionID) {
    m_configuration.sessionID = sessionID;
    post([started = gather(m_configuration, m_environment, u"TelemetryDeck.Session.started"_s)](
             TelemetryWorker &worker) { worker.startSession(started); });
}

void TelemetryManager::movedToBackground() {
    post(&TelemetryWorker::updateSession);
    if (!m_backgroundSince)
        m_backgroundSince = m_environment.now().date;
}

void TelemetryManager::returnedToForeground() {
    post(&TelemetryWorker::updateSession);
    const auto since = std::exchange(m_backgroundSince, std::nullopt);
    // The date, not the time that the computer was awake: a night with the lid closed is an absence.
    if (since && since->secsTo(m_environment.now().date) > longAbsence)
        setSessionID(QUuid::createUuid());
}

void TelemetryManager::aboutToTerminate() {
    const auto saved = std::make_shared<QSemaphore>();
    const bool isFirst = post([saved](TelemetryWorker &worker) {
        worker.save();
        saved->release();
    });
    if (!isFirst)
        return;
    end();
    static_cast<void>(saved->tryAcquire(1, std::chrono::milliseconds(terminationPatience).count()));
}

void TelemetryManager::abandon() {
    end();
    m_thread.wait();
}

void TelemetryManager::end() {
    post([thread = &m_thread](TelemetryWorker &) { thread->quit(); });
    m_worker = nullptr;
}

bool TelemetryManager::post(std::function<void(TelemetryWorker &)> work) {
    if (!m_worker)
        return false;
    return QMetaObject::invokeMethod(
        m_worker, [worker = m_worker, work = std::move(work)] { work(*worker); }, Qt::QueuedConnection);
}

} // namespace vantrel
