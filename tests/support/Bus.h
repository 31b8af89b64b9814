#pragma once

#include "support/WaitFor.h"

#include <QProcess>
#include <QTemporaryFile>
#include <QtDBus>

#include <gtest/gtest.h>

#include <functional>

namespace vantrel {

/// A bus like that of a session, and nobody on it but those whom a test connects: it starts no program.
class PrivateBus {
public:
    PrivateBus() {
        EXPECT_TRUE(m_configuration.open());
        m_configuration.write("<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
                              "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
                              "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
        m_configuration.close();
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--config-file=") + m_configuration.fileName(),
                        QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
        EXPECT_TRUE(waitFor([this] { return m_daemon.canReadLine(); }));
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    }
    ~PrivateBus() {
        for (const QString &name : m_names)
            QDBusConnection::disconnectFromBus(name);
        m_daemon.terminate();
        EXPECT_TRUE(m_daemon.waitForFinished());
    }
    Q_DISABLE_COPY_MOVE(PrivateBus)

    /// A new connection to it, called so.
    [[nodiscard]] QDBusConnection connection(const QString &name) {
        m_names.append(name);
        return QDBusConnection::connectToBus(m_address, name);
    }

private:
    QTemporaryFile m_configuration;
    QProcess m_daemon;
    QString m_address;
    QStringList m_names;
};

/// The other end of a bus: answers as it is told.
class Stub : public QDBusVirtualObject {
public:
    using Answer = std::function<bool(const QDBusMessage &message, const QDBusConnection &bus)>;
    explicit Stub(Answer answer) : m_answer(std::move(answer)) {}
    /// Is there for every program that connects to the server.
    void serve(QDBusServer &server) {
        connect(&server, &QDBusServer::newConnection, this, [this](QDBusConnection connection) {
            connection.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        });
    }
    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
        return m_answer(message, bus);
    }

private:
    Answer m_answer;
};

} // namespace vantrel
