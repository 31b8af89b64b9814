#include "ADB/PseudoTerminal.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vantrel {

namespace {

void closeDescriptor(int &descriptor) {
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

PseudoTerminal::PseudoTerminal() {
    // Neither end may reach another child that is started at the same moment, or the end of this one's output
    // would not be seen; and the terminal must not become this process's controlling one.
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_master < 0)
        return;
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);
    std::array<char, 128> name{};
    if (::grantpt(m_master) == 0 && ::unlockpt(m_master) == 0
#ifdef Q_OS_LINUX
        && ::ptsname_r(m_master, name.data(), name.size()) == 0
#else
        && ::ioctl(m_master, TIOCPTYGNAME, name.data()) == 0 // ptsname's buffer is shared by all threads
#endif
    )
        m_slave = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

PseudoTerminal::~PseudoTerminal() {
    finishReading();
    closeDescriptor(m_slave);
    closeDescriptor(m_master);
}

void PseudoTerminal::startReading(Reader reader) {
    closeDescriptor(m_slave);
    if (m_master >= 0)
        m_thread = std::jthread(
            [this, reader = std::move(reader)](const std::stop_token &stop) { read(stop, reader); });
}

void PseudoTerminal::finishReading() {
    if (m_thread.joinable()) {
        m_thread.request_stop();
        m_thread.join();
    }
}

void PseudoTerminal::read(const std::stop_token &stop, const Reader &reader) const {
    std::condition_variable_any pause; // ended by the request to stop
    std::mutex mutex;
    std::unique_lock lock(mutex);
    for (;;) {
        // The end of the child wakes this at once; the time-out only matters when a grandchild holds the
        // terminal.
        pollfd descriptor{m_master, POLLIN, 0};
        constexpr int timeoutMilliseconds = 50;
        const bool stopRequested = stop.stop_requested();
        const int ready = ::poll(&descriptor, 1, stopRequested ? 0 : timeoutMilliseconds);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready == 0 && !stopRequested)
            continue;
        if (ready <= 0)
            return;
        if (!readWhatIsThere(reader) || stopRequested)
            return;
        // adb 29 writes a line for every 64 KiB that it copies. To wake for each would take the processor
        // from adb and slow the copy; a terminal holds what comes meanwhile.
        constexpr std::chrono::milliseconds rest{4};
        pause.wait_for(lock, stop, rest, [] { return false; });
    }
}

bool PseudoTerminal::readWhatIsThere(const Reader &reader) const {
    // What one read of a terminal gives at most. More would be fresh memory for every copy.
    std::array<char, 4096> buffer{};
    constexpr int mostReads = 256; // more than a terminal holds; a child that writes on and on has no end
    for (int reads = 0; reads < mostReads; ++reads) {
        const ssize_t count = ::read(m_master, buffer.data(), buffer.size());
        if (count > 0)
            reader(QByteArray(buffer.data(), count));
        else if (count == 0 || errno != EINTR)
            return count < 0 && errno == EAGAIN; // EIO: the last holder of the other end is gone
    }
    return true;
}

} // namespace vantrel
