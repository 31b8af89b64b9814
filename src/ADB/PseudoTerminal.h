#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <functional>
#include <thread>

namespace vantrel {

/// A terminal for a child's standard output: adb shows how far a copy has come only there. What the child
/// writes is read by a thread of its own and handed on as it comes.
class PseudoTerminal {
public:
    /// Called on the reading thread with each piece of output.
    using Reader = std::function<void(const QByteArray &bytes)>;

    PseudoTerminal();
    ~PseudoTerminal();
    Q_DISABLE_COPY_MOVE(PseudoTerminal)

    /// The child's end, to become its standard output; -1 when the system has no terminal left.
    [[nodiscard]] int slave() const { return m_slave; }
    /// To be called once the child has been started: gives up this process's copy of the child's end, and
    /// reads.
    void startReading(Reader reader);
    /// To be called when the child has ended: hands on what is left and ends the thread.
    void finishReading();

private:
    void read(const std::stop_token &stop, const Reader &reader) const;
    /// Returns whether more may come.
    [[nodiscard]] bool readWhatIsThere(const Reader &reader) const;

    int m_master = -1;
    int m_slave = -1;
    std::jthread m_thread;
};

} // namespace vantrel
