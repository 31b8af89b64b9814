#pragma once

#include "ADB/ADBClient.h"
#include "Records/ListedPhone.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace vantrel::ADBClient {

/// More phones than anybody has; what adb lists beyond them is not read.
constexpr qsizetype mostPhones = 1000;

/// The phones that `adb devices` prints, in its order. A serial ends at the tab, so it may hold blanks;
/// notices of a server that is being started and other lines without a tab are passed over, but for a phone
/// that is ready.
[[nodiscard]] QList<ListedPhone> parsePhones(const QString &text);
/// The serials of those that are ready.
[[nodiscard]] QStringList parseDeviceList(const QString &text);

/// What keeps these phones, none of which is ready, from being shown: the first one's state.
[[nodiscard]] PhoneTrouble troubleOf(const QList<ListedPhone> &phones);
/// What the words of adb's standard error tell of its server; other when they tell nothing.
[[nodiscard]] PhoneTrouble troubleOf(const QByteArray &standardError);

/// Reads what `adb track-devices` prints, piece by piece: four hexadecimal digits, and as many bytes of a
/// list of phones.
class TrackedDevices {
public:
    /// Takes the next piece. Returns the newest whole list in it, if there is one.
    std::optional<QList<ListedPhone>> feed(const QByteArray &bytes);
    /// Whether something came that is no such list. What follows it is not read.
    [[nodiscard]] bool isGarbage() const { return m_isGarbage; }

private:
    QByteArray m_pending; ///< less than one list, which holds less than 64 KiB
    bool m_isGarbage = false;
};

/// What lists the cards and sticks behind `df` of the shared storage, each path on a line of its own before
/// its `df`. It goes well whether or not there are any.
[[nodiscard]] QString cardsCommand();
/// What comes of it: the text about the shared storage, and the cards. More than anybody has are not read.
[[nodiscard]] std::pair<QString, QList<StorageCard>> splitStorage(const QString &text);

/// The number behind "Version " in what `adb version` prints; 0 without one.
[[nodiscard]] int parseVersion(const QString &text);
/// The serial that `adb connect` says it is connected to; empty when it says something else.
[[nodiscard]] QString parseConnected(const QString &text);

/// Used and total bytes from the last line of `df`, whose first two whole numbers are total and used in units
/// of 1024 bytes. A figure that does not fit 64 bits when multiplied counts as unreadable.
[[nodiscard]] ADBResult<StorageBytes> parseDF(const QString &text);

} // namespace vantrel::ADBClient
