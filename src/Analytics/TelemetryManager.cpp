#include "Analytics/TelemetryManager.h"

#include "Analytics/DefaultParameters.h"
#include "Analytics/SignalJson.h"

#include <QCryptographicHash>
#include <QSemaphore>
#include <QThreadPool>

#include <cmath>

namespace vantrel {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto firstSessionDelay = 500ms;
constexpr qint64 longAbsence = 300; // seconds
// Closing the window may take 0.2 seconds longer than without analytics.
constexpr auto terminationPatience = 100ms;

bool hasReservedPrefix(const QString &name) {
    return name.startsWith("telemetrydeck."_L1, Qt::CaseInsensitive);
}

bool isReserved(const QString &name) {
    return reservedNames().contains(name.toLower());
}

void warnOfReservedNames(const TelemetryManagerConfiguration &configuration, const QString &name,
                         const SignalParameters &parameters) {
    const auto warn = [&configuration](const QString &message) {
        configuration.log(LogLevel::Error, message);
    };
    if (hasReservedPrefix(name))
        warn(u"Sending signal with reserved prefix 'TelemetryDeck.' will cause unexpected behavior. "
             "Please use another prefix instead."_s);
    else if (isReserved(name))
        warn(u"Sending signal with reserved name '"_s + name +
             u"' will cause unexpected behavior. Please use another name instead."_s);
    for (auto it = parameters.keyBegin(); it != parameters.keyEnd(); ++it) {
        if (hasReservedPrefix(*it))
            warn(u"Sending parameter with reserved key prefix 'TelemetryDeck.' will cause unexpected "
                 u"behavior. "
                 "Please use another prefix instead."_s);
        else if (isReserved(*it))
            warn(u"Sending parameter with reserved key '"_s + *it +
                 u"' will cause unexpected behavior. Please use another key instead."_s);
    }
}

} // namespace

QString hashed(const QString &text, const QString &salt) {
    return QString::fromLatin1(
        QCryptographicHash::hash((text + salt).toUtf8(), QCryptographicHash::Sha256).toHex());
}

QString preferencesDomainName(const QString &telemetryAppID) {
    return u"com.telemetrydeck."_s + hashed(telemetryAppID, {}).last(12);
}

TelemetryManager::TelemetryManager(TelemetryManagerConfiguration configuration,
                                   TelemetryEnvironment environment)
    : m_shared(std::make_shared<SharedConfiguration>(std::move(configuration))),
      m_environment(std::move(environment)), m_signalManager(m_shared, m_environment) {
    if (!m_environment.preferences)
        m_environment.preferences =
            preferencesDomain(preferencesDomainName(m_shared->current()->telemetryAppID));
    static_cast<void>(sessions()); // today is a day of use, however short
    m_firstSession =
        m_environment.clock->startTimer(firstSessionDelay, [this] { setSessionID(QUuid::createUuid()); });
}

TelemetryManager::~TelemetryManager() {
    aboutToTerminate();
}

void TelemetryManager::signal(const QString &name, const SignalParameters &parameters,
                              std::optional<double> floatValue, const std::optional<QString> &customUserID) {
    const auto configuration = m_shared->current();
    if (!configuration->records())
        return;
    const QString prefixedName = configuration->defaultSignalPrefix.value_or(QString()) + name;
    SignalParameters prefixed;
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it)
        prefixed.insert(configuration->defaultParameterPrefix.value_or(QString()) + it.key(), it.value());
    if (configuration->reservedParameterWarningsEnabled)
        warnOfReservedNames(*configuration, prefixedName, prefixed);
    record(prefixedName, prefixed, floatValue, customUserID);
}

void TelemetryManager::record(const QString &name, const SignalParameters &parameters,
                              std::optional<double> floatValue, const std::optional<QString> &customUserID) {
    const auto configuration = m_shared->current();
    if (!configuration->records())
        return;
    if (floatValue && !std::isfinite(*floatValue))
        floatValue
            .reset(); // JSON has no form for it, and one such signal would hold up its whole batch for good
    {
        const QMutexLocker locker(&m_recordedLock);
        if (m_isTerminating)
            return;
        m_recorded.append({m_environment.clock->now(), configuration->sessionID, name, parameters, floatValue,
                           customUserID});
    }
    // The parameters ask the application, which may only be asked on the main thread.
    if (QThread::currentThread() == thread())
        processRecorded();
    else
        QMetaObject::invokeMethod(
            this, [this] { processRecorded(); }, Qt::QueuedConnection);
}

void TelemetryManager::processRecorded() {
    const QList<Recorded> recorded = [this] {
        const QMutexLocker locker(&m_recordedLock);
        return std::exchange(m_recorded, {});
    }();
    for (const Recorded &entry : recorded)
        m_signalManager.push(process(entry));
}

SignalPostBody TelemetryManager::process(const Recorded &recorded) {
    const auto configuration = m_shared->current();
    SignalParameters payload =
        configuration->defaultParameters ? configuration->defaultParameters() : SignalParameters();
    payload.insert(defaultSignalParameters(m_environment.applicationFacts(), m_environment.clock->now()));
    if (SessionManager *statistics = sessions())
        payload.insert(statistics->retentionParameters());
    for (const SignalEnricher &enrich : configuration->metadataEnrichers)
        payload.insert(enrich(recorded.name, recorded.customUserID, recorded.floatValue));
    payload.insert(recorded.parameters);

    const auto user = recorded.customUserID ? recorded.customUserID : configuration->defaultUser;
    const SignalPostBody body{recorded.receivedAt,
                              configuration->telemetryAppID,
                              hashed(user ? *user : userIdentifier(), configuration->salt),
                              recorded.sessionID.toString(QUuid::WithoutBraces).toUpper(),
                              recorded.name,
                              recorded.floatValue,
                              payload,
                              configuration->testMode.value_or(false) ? u"true"_s : u"false"_s};
    if (configuration->logs(LogLevel::Debug))
        configuration->log(
            LogLevel::Debug,
            u"Process signal: "_s +
                QString::fromUtf8(encodeSignals({body}, DateForm::Network).value_or(QByteArray())));
    return body;
}

QString TelemetryManager::userIdentifier() {
    const QString key = u"defaultUserIdentifier"_s;
    const auto preferences = m_environment.preferences;
    QString identifier = preferences->value(key).toString();
    if (identifier.isEmpty()) {
        identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        preferences->setValue(key, identifier);
        QThreadPool::globalInstance()->start([preferences] { preferences->flush(); });
    }
    return identifier;
}

SessionManager *TelemetryManager::sessions() {
    const auto configuration = m_shared->current();
    if (!configuration->sessionStatsEnabled || !configuration->records())
        return nullptr;
    if (!m_sessionManager)
        m_sessionManager = std::make_unique<SessionManager>(m_environment.clock, m_environment.preferences);
    return m_sessionManager.get();
}

void TelemetryManager::setSessionID(const QUuid &sessionID) {
    m_shared->change([&sessionID](TelemetryManagerConfiguration &edited) { edited.sessionID = sessionID; });
    if (SessionManager *statistics = sessions()) {
        if (const auto firstSessionDate = statistics->startNewSession())
            record(u"TelemetryDeck.Acquisition.newInstallDetected"_s,
                   {{u"TelemetryDeck.Acquisition.firstSessionDate"_s, *firstSessionDate}}, std::nullopt,
                   std::nullopt);
    }
    if (m_shared->current()->sendNewSessionBeganSignal)
        record(u"TelemetryDeck.Session.started"_s, {}, std::nullopt, std::nullopt);
}

void TelemetryManager::movedToBackground() {
    if (m_sessionManager)
        m_sessionManager->updateAndFlush();
    if (!m_backgroundSince)
        m_backgroundSince = m_environment.clock->now();
}

void TelemetryManager::returnedToForeground() {
    if (m_sessionManager)
        m_sessionManager->updateAndFlush();
    const auto since = std::exchange(m_backgroundSince, std::nullopt);
    // The date, not the time that the computer was awake: a night with the lid closed is an absence.
    if (since && since->secsTo(m_environment.clock->now()) > longAbsence)
        setSessionID(QUuid::createUuid());
}

void TelemetryManager::aboutToTerminate() {
    {
        const QMutexLocker locker(&m_recordedLock);
        if (std::exchange(m_isTerminating, true))
            return;
    }
    processRecorded(); // what other threads have recorded
    m_firstSession.reset();
    const auto saved = std::make_shared<QSemaphore>();
    const auto done = [saved] { saved->release(); };
    m_signalManager.stopAndSave(done);
    if (m_sessionManager)
        m_sessionManager->stop(done);
    else
        done();
    static_cast<void>(saved->tryAcquire(2, std::chrono::milliseconds(terminationPatience).count()));
}

} // namespace vantrel
