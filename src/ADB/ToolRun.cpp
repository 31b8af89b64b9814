#include "ADB/ToolRun.h"

#include "ADB/PseudoTerminal.h"

#include <QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

namespace vantrel {

namespace {

/// How often a running child is looked after besides its own events.
constexpr std::chrono::milliseconds pollInterval{120};

/// Counts the calls of stopAll(). A run that was made before the last one is to end.
std::atomic<quint64> stopGeneration{0};

/// Between fork and exec: only calls that are safe there.
void prepareChild(int terminalForOutput) {
    ToolRun::endWithThread();
    if (terminalForOutput >= 0)
        ::dup2(terminalForOutput, STDOUT_FILENO);
}

} // namespace

ToolRun::ToolRun(const QString &executable, const QStringList &arguments,
                 const QProcessEnvironment &environment)
    : m_generation(stopGeneration.load()) {
    m_process.setProgram(executable);
    m_process.setArguments(arguments);
    m_process.setProcessEnvironment(environment);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
    m_process.setChildProcessModifier([] { prepareChild(-1); });
}

ToolRun::~ToolRun() {
    kill();
}

void ToolRun::useTerminal(PseudoTerminal &terminal) {
    m_process.setInputChannelMode(QProcess::ManagedInputChannel);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([slave = terminal.slave()] { prepareChild(slave); });
}

void ToolRun::readFrom(int file) {
    m_process.setInputChannelMode(QProcess::ManagedInputChannel);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([file] {
        prepareChild(-1);
        ::dup2(file, STDIN_FILENO);
    });
}

void ToolRun::appendTo(const QString &path) {
    m_process.setInputChannelMode(QProcess::ManagedInputChannel);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(path, QIODevice::Append);
}

void ToolRun::onStandardOutput(const std::function<void()> &handler) {
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process, handler);
}

void ToolRun::onStandardError(const std::function<void()> &handler) {
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process, handler);
}

ADBResult<void> ToolRun::start() {
    m_process.start(QIODevice::ReadOnly);
    if (!m_process.waitForStarted(-1))
        return tl::make_unexpected(ADBError::executionFailed(m_process.errorString()));
    return {};
}

bool ToolRun::isRunningAfter(std::chrono::milliseconds time) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (m_process.state() != QProcess::NotRunning) {
        if (stopGeneration.load() != m_generation || m_stop.stop_requested()) {
            m_wasStopped = true;
            kill();
            break;
        }
        const auto left = time.count() - elapsed.elapsed();
        if (left <= 0)
            break;
        m_process.waitForFinished(static_cast<int>(std::min<qint64>(left, pollInterval.count())));
    }
    return m_process.state() != QProcess::NotRunning;
}

void ToolRun::kill() {
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(-1);
}

bool ToolRun::succeeded() const {
    return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}

void ToolRun::endWithThread() {
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

void ToolRun::stopAll() {
    ++stopGeneration;
}

} // namespace vantrel
