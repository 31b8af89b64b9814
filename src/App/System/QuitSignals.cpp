#include "App/System/QuitSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vantrel {

namespace {

constexpr std::array quittingSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler may do little more than write into a pipe; the event loop reads from the other end.
int readEnd = -1;
int writeEnd = -1;

void note(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(writeEnd, &byte, 1);
}

} // namespace

QuitSignals::QuitSignals() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        return; // then a signal ends the program at once
    readEnd = ends[0];
    writeEnd = ends[1];
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    m_notifier = new QSocketNotifier(readEnd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        // A second signal is for those who do not want to wait.
        for (const int signal : quittingSignals)
            std::signal(signal, SIG_DFL);
        QCoreApplication::quit();
    });
    for (const int signal : quittingSignals) {
        struct sigaction action {};
        action.sa_handler = note;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

QuitSignals::~QuitSignals() {
    if (writeEnd < 0)
        return;
    for (const int signal : quittingSignals)
        std::signal(signal, SIG_DFL);
    delete m_notifier;
    close(readEnd);
    close(writeEnd);
    readEnd = writeEnd = -1;
}

} // namespace vantrel
