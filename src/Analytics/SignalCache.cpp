#include "Analytics/SignalCache.h"

#include "Analytics/SignalJson.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

#include <algorithm>

namespace vantrel {

namespace {

using namespace std::chrono_literals;

/// More than the JSON parser takes. 10,000 signals are a quarter of it.
constexpr qint64 maximumFileSize = 128 * 1024 * 1024;

/// Several copies of the program share the file. Where the lock cannot be had, because the directory is
/// read-only or the other copy hangs, going on without it is better than losing the signals for certain.
class FileLock {
public:
    explicit FileLock(const QString &file) : m_lock(file + QStringLiteral(".lock")) {
        static_cast<void>(m_lock.tryLock(2s));
    }

private:
    QLockFile m_lock;
};

/// The file's text; nothing when there is no such regular file or it cannot be read or is far too large.
std::optional<QByteArray> contents(const QString &path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.size() > maximumFileSize ? QByteArray() : file.readAll();
}

} // namespace

SignalCache::SignalCache(std::shared_ptr<SharedConfiguration> configuration, std::optional<QUrl> cacheFileURL,
                         const QString &cachesDirectory)
    : m_configuration(std::move(configuration)), m_cacheFileURL(std::move(cacheFileURL)),
      m_queue(QStringLiteral("com.telemetrydeck.SignalCache")) {
    if (m_cacheFileURL)
        return;
    if (cachesDirectory.isEmpty())
        m_configuration->current()->log(LogLevel::Error,
                                        QStringLiteral("Failed to get disk cache url from FileManager."));
    else
        m_cacheFileURL =
            QUrl::fromLocalFile(QDir(cachesDirectory).filePath(QStringLiteral("telemetrysignalcache")));
}

void SignalCache::push(QList<SignalPostBody> batch) {
    m_queue.async([this, batch = std::move(batch)] {
        m_signals.insert(m_signals.end(), batch.begin(), batch.end());
        trim();
    });
}

SignalCache::Popped SignalCache::pop() {
    Popped popped;
    m_queue.sync([this, &popped] {
        const auto count =
            std::min<qsizetype>(qsizetype(m_signals.size()), maximumNumberOfSignalsToPopAtOnce);
        const auto end = m_signals.begin() + count;
        popped.batch.reserve(count);
        std::move(m_signals.begin(), end, std::back_inserter(popped.batch));
        m_signals.erase(m_signals.begin(), end);
        popped.remaining = qsizetype(m_signals.size());
    });
    return popped;
}

void SignalCache::load() {
    if (m_cacheFileURL)
        m_queue.async([this] { readFile(); });
}

void SignalCache::save(std::function<void()> done) {
    m_queue.async([this, done = std::move(done)] {
        if (m_cacheFileURL)
            writeFile();
        done();
    });
}

void SignalCache::trim() {
    const auto limit = std::size_t(std::max(0, m_configuration->current()->cacheLimit));
    if (m_signals.size() > limit)
        m_signals.erase(m_signals.begin(), m_signals.end() - std::ptrdiff_t(limit));
}

void SignalCache::readFile() {
    const auto configuration = m_configuration->current();
    configuration->log(LogLevel::Info,
                       QStringLiteral("Loading Telemetry cache from: ") + m_cacheFileURL->toString());
    std::optional<QByteArray> json;
    if (QFileInfo::exists(path())) {
        const FileLock lock(path());
        json = contents(path());
        if (json)
            QFile::remove(path());
    }
    const auto loaded = json ? decodeSignals(*json) : std::nullopt;
    if (!loaded)
        return;
    m_signals.insert(m_signals.end(), loaded->begin(), loaded->end());
    trim();
    configuration->log(LogLevel::Info, QStringLiteral("Loaded ") + QString::number(loaded->size()) +
                                           QStringLiteral(" signals"));
}

void SignalCache::writeFile() {
    const auto configuration = m_configuration->current();
    QDir().mkpath(QFileInfo(path()).path());
    const FileLock lock(path());

    const std::optional<QByteArray> existing = contents(path());
    const auto others = existing ? decodeSignals(*existing) : std::nullopt;
    if (others) {
        m_signals.insert(m_signals.begin(), others->begin(), others->end());
        trim();
    }

    const auto json = encodeSignals(QList(m_signals.begin(), m_signals.end()), DateForm::Disk);
    QSaveFile file(path());
    if (json && file.open(QIODevice::WriteOnly) && file.write(*json) == json->size() && file.commit())
        configuration->log(LogLevel::Info, QStringLiteral("Saved Telemetry cache ") +
                                               m_cacheFileURL->toString() + QStringLiteral(" of ") +
                                               QString::number(m_signals.size()) +
                                               QStringLiteral(" signals"));
    else
        configuration->log(LogLevel::Error, QStringLiteral("Error saving Telemetry cache"));
}

} // namespace vantrel
