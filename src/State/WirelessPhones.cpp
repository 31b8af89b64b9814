#include "State/WirelessPhones.h"

#include "ADB/ADBClient.h"
#include "Worker/Worker.h"

#include <algorithm>

namespace vantrel {

WirelessPhones::WirelessPhones(const QStringList &remembered, QObject *parent) : QObject(parent) {
    QStringList addresses;
    for (const QString &text : remembered) {
        if (const auto address = ADBClient::wirelessAddress(text); address && !addresses.contains(*address))
            addresses.append(*address);
    }
    m_remembered = addresses;
}

WirelessPhones::~WirelessPhones() {
    m_stop.request_stop();
}

QString WirelessPhones::problemWith(const QString &pairingPort, const QString &code) const {
    const bool isCode = !code.isEmpty() && std::all_of(code.begin(), code.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
    if (version() > 0 && version() < pairingVersion)
        return QStringLiteral("Pairing needs adb %1 or later; this one is %2.")
            .arg(pairingVersion)
            .arg(version());
    if (!isCode)
        return QStringLiteral("The pairing code is the number that the phone shows.");
    if (pairingPort.isEmpty())
        return QStringLiteral("Type the pairing port, too: the phone shows it with the code.");
    return {};
}

QCoro::Task<> WirelessPhones::connectTo(QString address, QString pairingPort, QString code) {
    m_stop.request_stop();
    m_stop = std::stop_source();
    const std::stop_token stop = m_stop.get_token();
    m_isConnecting = false;
    const auto target = ADBClient::wirelessAddress(address);
    if (!target) {
        m_message = QStringLiteral("This is no address. The phone shows one such as 192.168.1.20:37123.");
        co_return;
    }
    const QString host = target->left(target->lastIndexOf(QLatin1Char(':')));
    const auto pairingTarget = ADBClient::wirelessAddress(host % QLatin1Char(':') % pairingPort.trimmed());
    const bool pairs = !code.trimmed().isEmpty() || !pairingPort.trimmed().isEmpty();
    QString problem = pairs ? problemWith(pairingPort.trimmed(), code.trimmed()) : QString();
    if (pairs && problem.isEmpty() && !pairingTarget)
        problem = QStringLiteral("The pairing port is a number of up to five digits.");
    m_message = problem;
    if (!problem.isEmpty())
        co_return;

    m_isConnecting = true;
    std::optional<ADBError> failure;
    if (pairs) {
        const auto paired =
            co_await Background::run(this, &ADBClient::pairWith, *pairingTarget, code.trimmed(), stop);
        if (!paired)
            failure = paired.error();
    }
    QString serial;
    if (!failure && !stop.stop_requested()) {
        const auto connection = co_await Background::run(this, &ADBClient::connectTo, *target, stop);
        if (connection)
            serial = *connection;
        else
            failure = connection.error();
    }
    if (stop.stop_requested())
        co_return;
    m_isConnecting = false;
    if (failure) {
        m_message = failure->kind() == ADBError::Kind::noAnswer
                        ? QString(QStringLiteral("Nothing answers at ") % *target % QLatin1Char('.'))
                        : failure->errorDescription();
        co_return;
    }
    QStringList addresses = remembered();
    addresses.removeAll(*target);
    m_remembered = addresses << *target;
    Q_EMIT connected(serial);
}

void WirelessPhones::cancel() {
    m_stop.request_stop();
    m_isConnecting = false;
    m_message = QString();
}

QCoro::Task<> WirelessPhones::reconnect() {
    const QStringList addresses = remembered();
    for (const QString &address : addresses) {
        if (remembered().contains(address)) // it may have been forgotten meanwhile
            co_await Background::run(this, &ADBClient::connectTo, address, std::stop_token());
    }
}

QCoro::Task<> WirelessPhones::forget(QString address) {
    QStringList addresses = remembered();
    addresses.removeAll(address);
    m_remembered = addresses;
    co_await Background::run(this, &ADBClient::disconnectFrom, address);
}

QCoro::Task<> WirelessPhones::learnVersion() {
    const auto found = co_await Background::run(this, &ADBClient::fetchVersion);
    m_version = found.value_or(0);
}

} // namespace vantrel
