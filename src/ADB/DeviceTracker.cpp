#include "ADB/DeviceTracker.h"

#include "ADB/ToolRun.h"

#include <utility>

namespace vantrel {

DeviceTracker::DeviceTracker(QObject *parent) : QObject(parent) {
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.setChildProcessModifier(&ToolRun::endWithThread);
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &DeviceTracker::read);
    connect(&m_process, &QProcess::finished, this, &DeviceTracker::end);
    connect(&m_process, &QProcess::errorOccurred, this, [this] {
        if (!isRunning()) // it could not be started
            end();
    });
}

DeviceTracker::~DeviceTracker() {
    stop();
}

void DeviceTracker::start() {
    if (isRunning())
        return;
    m_devices = {};
    m_isAwaited = true;
    const auto tool = ADBClient::resolveADBPath();
    if (!tool) {
        QMetaObject::invokeMethod(this, &DeviceTracker::end, Qt::QueuedConnection);
        return;
    }
    m_process.setProgram(*tool);
    m_process.setArguments({QStringLiteral("track-devices")});
    m_process.setProcessEnvironment(ADBClient::augmentedEnvironment());
    m_process.start(QIODevice::ReadOnly);
}

void DeviceTracker::stop() {
    m_isAwaited = false;
    m_isTracking = false;
    m_process.kill();
    m_process.waitForFinished(-1);
}

void DeviceTracker::read() {
    if (!m_isAwaited) // what was still in the pipe when it was stopped
        return;
    const auto phones = m_devices.feed(m_process.readAllStandardOutput());
    if (phones)
        m_isTracking = true;
    if (m_devices.isGarbage())
        m_process.kill();
    else if (phones)
        Q_EMIT changed(*phones);
}

void DeviceTracker::end() {
    m_isTracking = false;
    if (std::exchange(m_isAwaited, false))
        Q_EMIT ended();
}

} // namespace vantrel
