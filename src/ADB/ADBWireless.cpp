#include "ADB/ADBClient.h"

#include "ADB/DeviceText.h"
#include "ADB/ToolText.h"

namespace vantrel::ADBClient {

namespace {

/// Asks with the patience that a connection needs: twice that of a question.
ADBResult<QString> askNetwork(const QStringList &arguments, const std::stop_token &stop) {
    const auto answer = askADB(arguments, 2 * patience(), stop);
    if (!answer)
        return tl::make_unexpected(answer.error());
    // What failed is told on either stream, with whatever exit status.
    const QString words = ToolText::decode(answer->output + '\n' + answer->errors);
    return ToolText::reason(words).text;
}

} // namespace

ADBResult<int> fetchVersion() {
    return askADBForText({QStringLiteral("version")}).map(parseVersion);
}

ADBResult<QString> connectTo(const QString &address, const std::stop_token &stop) {
    const auto words = askNetwork({QStringLiteral("connect"), address}, stop);
    if (words) {
        if (const QString serial = parseConnected(*words); !serial.isEmpty())
            return serial;
    }
    // adb keeps an address that did not answer in its list of phones.
    static_cast<void>(disconnectFrom(address));
    if (!words)
        return tl::make_unexpected(words.error());
    return tl::make_unexpected(ADBError::executionFailed(
        words->isEmpty() ? QStringLiteral("adb did not say whether it could connect.") : *words));
}

ADBResult<void> pairWith(const QString &address, const QString &code, const std::stop_token &stop) {
    const auto words = askNetwork({QStringLiteral("pair"), address, code}, stop);
    if (!words)
        return tl::make_unexpected(words.error());
    if (words->startsWith(QLatin1String("Successfully paired")))
        return {};
    return tl::make_unexpected(ADBError::executionFailed(
        words->isEmpty() ? QStringLiteral("adb did not say whether it could pair.") : *words));
}

ADBResult<void> disconnectFrom(const QString &address) {
    const auto answer = askADB({QStringLiteral("disconnect"), address});
    if (!answer)
        return tl::make_unexpected(answer.error());
    return {}; // of an address that is not connected adb says so, which is as well
}

} // namespace vantrel::ADBClient
