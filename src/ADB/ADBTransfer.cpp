#include "ADB/ADBClient.h"

#include "ADB/PseudoTerminal.h"
#include "ADB/ToolRun.h"
#include "ADB/ToolText.h"
#include "ADB/TransferText.h"
#include "Records/ByteSum.h"
#include "Records/TransferFormat.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>

namespace vantrel::ADBClient {

namespace {

constexpr std::chrono::milliseconds pollingInterval{120};

/// Makes one rising stream of the reports of all sources. Any thread; the receiver is called without the lock
/// that guards the last fraction, but never twice at once.
class ProgressStream {
public:
    ProgressStream(qint64 expectedBytes, const TransferProgress &receiver)
        : m_expectedBytes(expectedBytes), m_receiver(receiver) {}

    void reportPercent(double percent) {
        const double fraction = percent / 100;
        report(fraction, m_expectedBytes >= 1
                             ? wholeBytes(std::round(fraction * static_cast<double>(m_expectedBytes)))
                             : 0);
    }

    /// Only where the expected bytes are known.
    void reportBytes(qint64 bytes) {
        if (bytes > 0)
            report(static_cast<double>(bytes) / static_cast<double>(m_expectedBytes), bytes);
    }

private:
    void report(double fraction, qint64 bytes) {
        constexpr double highest = 0.99; // the end of the call is what says that a copy is done
        constexpr double step = 0.001;
        fraction = std::clamp(fraction, 0.0, highest);
        const std::scoped_lock order(m_delivery);
        {
            const std::scoped_lock lock(m_guard);
            if (fraction <= m_lastFraction + step)
                return;
            m_lastFraction = fraction;
        }
        if (m_receiver)
            m_receiver(fraction, bytes, m_expectedBytes);
    }

    const qint64 m_expectedBytes;
    const TransferProgress &m_receiver;
    std::mutex m_delivery; ///< keeps a report from overtaking an earlier one of the other source
    std::mutex m_guard;    ///< guards the last fraction; never held while the receiver runs
    double m_lastFraction = 0;
};

/// What a copy has written to standard error. Only its end is kept: the latest percentage and the reason are
/// there.
class ErrorStream {
public:
    void append(const QByteArray &bytes) {
        constexpr qsizetype kept = 65'536;
        m_bytes += bytes;
        if (m_bytes.size() > 2 * kept)
            m_bytes.remove(0, m_bytes.size() - kept);
    }
    [[nodiscard]] QString text() const { return ToolText::decode(m_bytes); }

private:
    QByteArray m_bytes;
};

/// adb prints progress only to a terminal that can rewrite a line.
QProcessEnvironment terminalEnvironment() {
    QProcessEnvironment environment = augmentedEnvironment();
    const QString key = QStringLiteral("TERM");
    const QString terminal = environment.value(key);
    if (terminal.isEmpty() || terminal == QLatin1String("dumb"))
        environment.insert(key, QStringLiteral("xterm"));
    return environment;
}

bool isListed(const QString &serial) {
    const auto serials = listDeviceSerials();
    return !serials || serials->contains(serial); // what cannot be asked is not known to be gone
}

/// Why a copy failed, from the best source there is. adb writes its reason to standard output, and none at
/// all when the phone goes away in the middle.
QString failureMessage(const ToolRun &run, const ToolText::Reason &errorStream, const QString &outputError,
                       const QStringList &arguments) {
    if (run.wasStopped())
        return QStringLiteral("The copy was stopped.");
    if (!outputError.isEmpty() && !errorStream.isTheToolsOwn)
        return outputError;
    if (!errorStream.text.isEmpty())
        return errorStream.text;
    const qsizetype serial = arguments.indexOf(QStringLiteral("-s")) + 1;
    if (serial > 0 && serial < arguments.size() && !isListed(arguments.at(serial)))
        return QStringLiteral("The phone was disconnected during the copy.");
    return QStringLiteral("adb exited with ") + QString::number(run.exitStatus());
}

} // namespace

ADBResult<void> runTransfer(const QStringList &arguments, qint64 expectedBytes,
                            const std::optional<QString> &localPathForSizePolling,
                            const TransferProgress &onProgress, const std::stop_token &stop) {
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());

    ProgressStream progress(expectedBytes, onProgress);
    ErrorStream errors;
    TransferOutput output;
    PseudoTerminal terminal;
    ToolRun run(*tool, arguments, terminalEnvironment());
    run.useTerminal(terminal);
    run.stopWith(stop);
    if (auto started = run.start(); !started)
        return started;
    std::atomic<bool> isHeard{false}; // on any of the three ways in which a copy shows
    terminal.startReading([&](const QByteArray &bytes) {
        isHeard = true;
        if (const auto percent = output.feed(bytes))
            progress.reportPercent(*percent);
    });

    const auto readErrors = [&] {
        const QByteArray bytes = run.takeStandardError();
        if (bytes.isEmpty())
            return;
        isHeard = true;
        errors.append(bytes);
        if (const auto percent = parseProgressPercent(errors.text()))
            progress.reportPercent(*percent);
    };
    run.onStandardError(readErrors);
    QElapsedTimer silence;
    silence.start();
    bool isSilent = false;
    bool isTooMuch = false;
    do {
        if (isHeard.exchange(false))
            silence.start();
        isSilent = silence.hasExpired(patience().count());
        const qint64 arrived = localPathForSizePolling ? allocatedByteCount(*localPathForSizePolling) : 0;
        isTooMuch = arrived > byteSum(expectedBytes, mostGrowth);
        if (isSilent || isTooMuch)
            run.kill();
        if (expectedBytes > 0)
            progress.reportBytes(arrived);
    } while (run.isRunningAfter(pollingInterval));
    readErrors();
    terminal.finishReading();

    if (isSilent)
        return tl::make_unexpected(ADBError::noAnswer());
    if (isTooMuch)
        return tl::make_unexpected(ADBError::executionFailed(sourceChanged()));
    if (run.succeeded() && !run.wasStopped())
        return {};
    return tl::make_unexpected(ADBError::executionFailed(
        failureMessage(run, ToolText::reason(errors.text()), output.errorText(), arguments)));
}

QString sourceChanged() {
    return QStringLiteral("It was changed while it was copied.");
}

qint64 allocatedByteCount(const QString &path) {
    const QFileInfo info(path);
    if (!info.isDir())
        return info.exists() ? info.size() : 0;
    qint64 bytes = 0;
    QDirIterator entries(path, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        bytes += entries.fileInfo().size();
    }
    return bytes;
}

} // namespace vantrel::ADBClient
