#pragma once

#include <QCoroTask>
#include <QObject>
#include <QProperty>
#include <QStringList>

#include <optional>
#include <stop_token>

namespace vantrel {

/// Phones that adb reaches over the network: connects to them, and knows which ones to come back to. Main
/// thread only.
class WirelessPhones : public QObject {
    Q_OBJECT

public:
    /// The version of adb that can pair.
    static constexpr int pairingVersion = 30;

    /// `remembered`: addresses of earlier starts; what is none is left out.
    explicit WirelessPhones(const QStringList &remembered, QObject *parent = nullptr);
    ~WirelessPhones() override;

    /// Addresses that worked once, "HOST:PORT", the newest last.
    [[nodiscard]] const QStringList &remembered() const { return m_remembered.value(); }
    /// Whether the user waits for a connection.
    [[nodiscard]] bool isConnecting() const { return m_isConnecting; }
    /// Why there is no connection, in words.
    [[nodiscard]] const QString &message() const { return m_message.value(); }
    /// adb's version; 0 until it is known.
    [[nodiscard]] int version() const { return m_version; }

    /// Connects to an address as the user types it; with a code, which the phone shows together with a port,
    /// the two are paired before. One at a time: another call ends the one before.
    QCoro::Task<> connectTo(QString address, QString pairingPort, QString code);
    /// Gives the connection up that is waited for.
    void cancel();
    /// Connects to all that are remembered, silently and one after the other.
    QCoro::Task<> reconnect();
    /// Disconnects, and does not come back to it.
    QCoro::Task<> forget(QString address);
    QCoro::Task<> learnVersion();

Q_SIGNALS:
    void rememberedChanged();
    void isConnectingChanged();
    void messageChanged();
    void versionChanged();
    /// The user's connection stands.
    void connected(const QString &serial);

private:
    [[nodiscard]] QString problemWith(const QString &pairingPort, const QString &code) const;

    std::stop_source m_stop; ///< of what the user waits for
    Q_OBJECT_BINDABLE_PROPERTY(WirelessPhones, QStringList, m_remembered, &WirelessPhones::rememberedChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(WirelessPhones, bool, m_isConnecting, false,
                                         &WirelessPhones::isConnectingChanged)
    Q_OBJECT_BINDABLE_PROPERTY(WirelessPhones, QString, m_message, &WirelessPhones::messageChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(WirelessPhones, int, m_version, 0, &WirelessPhones::versionChanged)
};

} // namespace vantrel
