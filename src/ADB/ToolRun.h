#pragma once

#include "ADB/ADBError.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <chrono>
#include <functional>
#include <stop_token>

namespace vantrel {

class PseudoTerminal;

/// One child process, from its start to its end, on the calling thread, which needs no event loop. The child
/// is never left behind: it is killed when stopAll() is called, when the run is destroyed, and (on Linux)
/// when this process dies.
class ToolRun {
public:
    /// The child gets the arguments unchanged and exactly this environment; its standard input is this
    /// process's own.
    ToolRun(const QString &executable, const QStringList &arguments, const QProcessEnvironment &environment);
    ~ToolRun();
    Q_DISABLE_COPY_MOVE(ToolRun)

    /// Standard output goes to the terminal, standard input comes from nowhere. To be called before start().
    void useTerminal(PseudoTerminal &terminal);

    /// Standard input comes from a file of this process, from where it stands on: how far the child has read
    /// is where it stands then. To be called before start(); the file must stay open until the end.
    void readFrom(int file);
    /// Standard output is appended to a file. To be called before start().
    void appendTo(const QString &path);

    /// Called, while the run waits, whenever something has come on that stream. To be set before waiting.
    void onStandardOutput(const std::function<void()> &handler);
    void onStandardError(const std::function<void()> &handler);

    /// Ends the child within 0.12 s of a request to stop, as stopAll() does. To be called before waiting.
    void stopWith(std::stop_token stop) { m_stop = std::move(stop); }

    /// Fails with the system's description when the child cannot be started.
    [[nodiscard]] ADBResult<void> start();
    /// Waits until the child has ended or the time is over; returns whether it still runs. Returns at once
    /// when it ends. Both streams are drained meanwhile.
    [[nodiscard]] bool isRunningAfter(std::chrono::milliseconds time);
    /// What has come since the last call.
    [[nodiscard]] QByteArray takeStandardOutput() { return m_process.readAllStandardOutput(); }
    [[nodiscard]] QByteArray takeStandardError() { return m_process.readAllStandardError(); }
    /// Ends the child now.
    void kill();

    /// The exit status once the child has ended; the signal's number when a signal ended it.
    [[nodiscard]] int exitStatus() const { return m_process.exitCode(); }
    [[nodiscard]] bool succeeded() const;
    /// Whether stopAll() or a request to stop ended it.
    [[nodiscard]] bool wasStopped() const { return m_wasStopped; }

    /// For a child, between fork and exec: on Linux it is killed when the thread that started it ends.
    static void endWithThread();
    /// Makes every run that exists now end its child within 0.12 s. Any thread.
    static void stopAll();

private:
    QProcess m_process;
    quint64 m_generation;
    std::stop_token m_stop;
    bool m_wasStopped = false;
};

} // namespace vantrel
