#include "ADB/ADBClient.h"

#include "ADB/DeviceText.h"
#include "ADB/ToolText.h"

namespace vantrel::ADBClient {

namespace {

ADBResult<QString> askShell(const QString &serial, const QString &command, const QString &argument) {
    return askADBForText({QStringLiteral("-s"), serial, QStringLiteral("shell"), command, argument});
}

bool isSilent(const ADBError &error) {
    return error.kind() == ADBError::Kind::noAnswer;
}

} // namespace

PhoneTrouble troubleOf(const ADBError &error) {
    switch (error.kind()) {
    case ADBError::Kind::adbNotFound:
        return PhoneTrouble::toolMissing;
    case ADBError::Kind::noAnswer:
        return PhoneTrouble::noAnswer;
    default:
        return PhoneTrouble::other;
    }
}

ADBResult<QStringList> listDeviceSerials() {
    return askADBForText({QStringLiteral("devices")}).map(parseDeviceList);
}

QString chosenPhone(const QList<ListedPhone> &phones, const QString &preferred) {
    QString chosen;
    for (const ListedPhone &phone : phones) {
        if (phone.isReady() && (chosen.isNull() || phone.serial == preferred))
            chosen = phone.serial;
    }
    return chosen;
}

PhoneLook lookForPhones(const QString &preferred) {
    const auto answer = askADB({QStringLiteral("devices")});
    if (!answer)
        return {{}, tl::make_unexpected(answer.error()), troubleOf(answer.error())};
    const PhoneTrouble ofServer = troubleOf(answer->errors);
    if (!answer->succeeded)
        return {{}, tl::make_unexpected(answer->error()), ofServer};
    const auto phones = parsePhones(ToolText::decode(answer->output));
    const QString serial = chosenPhone(phones, preferred);
    if (serial.isNull()) // a server that was just restarted has not found the phones yet
        return {phones, tl::make_unexpected(ADBError::noDevice()),
                ofServer == PhoneTrouble::other ? troubleOf(phones) : ofServer};
    const auto phone = fetchDevice(serial);
    return {phones, phone, phone ? PhoneTrouble::none : troubleOf(phone.error())};
}

ADBResult<AndroidDevice> fetchPrimaryDevice() {
    return lookForPhones({}).phone;
}

ADBResult<QString> fetchModel(const QString &serial) {
    return askShell(serial, QStringLiteral("getprop"), QStringLiteral("ro.product.model"))
        .map(ToolText::trimmed);
}

ADBResult<AndroidDevice> fetchDevice(const QString &serial) {
    const auto model = fetchModel(serial);
    if (!model && isSilent(model.error())) // it would keep silent to the next question, too
        return tl::make_unexpected(model.error());
    const auto storage = fetchStorage(serial);
    if (!model && !storage) // nothing that is asked of it is answered
        return tl::make_unexpected(storage.error());
    const QString name = model.value_or(QString());
    const auto [shared, cards] = storage.value_or(PhoneStorage{{0, -1}, {}});
    return AndroidDevice{serial, name.isEmpty() ? serial : name, true, shared.used, shared.total, cards};
}

ADBResult<PhoneStorage> fetchStorage(const QString &serial) {
    // One question, since it is asked every minute: each card's path comes before what df says of it. Where
    // the phone makes nothing of that, the plain one.
    const QString all = QStringLiteral("/sdcard") % cardsCommand();
    QList<StorageCard> cards;
    for (const QString &path : {all, QStringLiteral("/sdcard"), QStringLiteral("/data")}) {
        const auto answer = askShell(serial, QStringLiteral("df"), path);
        if (!answer && isSilent(answer.error()))
            return tl::make_unexpected(answer.error());
        const auto [shared, found] = splitStorage(answer.value_or(QString()));
        cards += found;
        if (const auto bytes = parseDF(shared))
            return PhoneStorage{*bytes, cards};
    }
    return tl::make_unexpected(ADBError::parseFailed(QStringLiteral("Could not read device storage (df).")));
}

} // namespace vantrel::ADBClient
