#include "Analytics/SignalCache.h"

#include "Analytics/SignalJson.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

#include <algorithm>

namespace vantrel {

namespace {

/// More than the JSON parser takes. 10,000 signals are a quarter of it.
constexpr qint64 maximumFileSize = 134'217'728;

constexpr QLatin1String lockSuffix(".lock");
constexpr int lockPatience = 2000; // milliseconds

/// The file's text; nothing when there is no such regular file or it cannot be read or is far too large.
std::optional<QByteArray> contents(const QString &path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.size() > maximumFileSize ? QByteArray() : file.readAll();
}

} // namespace

SignalCache::SignalCache(std::shared_ptr<const TelemetryManagerConfiguration> configuration,
                         const QString &directory)
    : m_configuration(std::move(configuration)) {
    if (directory.isEmpty())
        m_configuration->log(LogLevel::error,
                             QStringLiteral("Failed to get disk cache url from FileManager."));
    else
        m_cacheFileURL = QUrl::fromLocalFile(filePath(directory));
}

QString SignalCache::filePath(const QString &directory) {
    return QDir(directory).filePath(QStringLiteral("telemetrysignalcache"));
}

void SignalCache::push(const QList<SignalPostBody> &batch) {
    m_signals.append(batch);
    const qsizetype surplus = m_signals.size() - std::max(0, m_configuration->cacheLimit);
    if (surplus > 0)
        m_signals.remove(0, surplus);
}

QList<SignalPostBody> SignalCache::pop() {
    QList<SignalPostBody> batch =
        m_signals.first(std::min(m_signals.size(), maximumNumberOfSignalsToPopAtOnce));
    m_signals.remove(0, batch.size());
    return batch;
}

void SignalCache::load() {
    if (!m_cacheFileURL)
        return;
    m_configuration->log(LogLevel::info,
                         QStringLiteral("Loading Telemetry cache from: ") + m_cacheFileURL->toString());
    const QString path = m_cacheFileURL->toLocalFile();
    if (!QFileInfo::exists(path))
        return;
    // Several copies of the program share the file. Where the lock cannot be had, because the directory is
    // read-only or the other copy hangs, going on without it is better than losing the signals for certain.
    QLockFile lock(path + lockSuffix);
    static_cast<void>(lock.tryLock(lockPatience));
    const auto json = contents(path);
    if (json)
        QFile::remove(path);
    const auto loaded = json ? decodeSignals(*json) : std::nullopt;
    if (!loaded)
        return;
    push(*loaded);
    m_configuration->log(LogLevel::info, QStringLiteral("Loaded %1 signals").arg(loaded->size()));
}

void SignalCache::save() {
    if (!m_cacheFileURL)
        return;
    const QString path = m_cacheFileURL->toLocalFile();
    QDir().mkpath(QFileInfo(path).path());
    QLockFile lock(path + lockSuffix);
    static_cast<void>(lock.tryLock(lockPatience));
    const auto existing = contents(path);
    if (const auto others = existing ? decodeSignals(*existing) : std::nullopt)
        push(*others + std::exchange(m_signals, {}));

    const auto json = encodeSignals(m_signals, DateForm::disk);
    QSaveFile file(path);
    // The commit alone overlooks what comes of the last flush, a full disk above all.
    if (json && file.open(QIODevice::WriteOnly) && file.write(*json) == json->size() && file.flush() &&
        file.commit())
        m_configuration->log(LogLevel::info, QStringLiteral("Saved Telemetry cache %1 of %2 signals")
                                                 .arg(m_cacheFileURL->toString())
                                                 .arg(m_signals.size()));
    else
        m_configuration->log(LogLevel::error, QStringLiteral("Error saving Telemetry cache"));
}

} // namespace vantrel
