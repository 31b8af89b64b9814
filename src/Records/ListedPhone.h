#pragma once

#include <QString>

namespace vantrel {

/// A phone as adb lists it, ready or not.
struct ListedPhone {
    QString serial;
    QString state; ///< adb's word: "device" when it is ready, "offline", "unauthorized", "no permissions"…
    QString model = {}; ///< empty until it was asked for

    [[nodiscard]] bool isReady() const { return state == QLatin1String("device"); }
    friend bool operator==(const ListedPhone &, const ListedPhone &) = default;
};

/// What keeps a phone from being shown.
enum class PhoneTrouble {
    none,
    noPhone,       ///< nothing is plugged in that adb knows
    unauthorized,  ///< the phone asks its owner whether this computer may
    authorizing,   ///< the two are talking about that
    offline,       ///< plugged in, and silent
    noPermissions, ///< this user may not talk to the device
    recovery,
    sideload,
    bootloader,
    toolMissing,    ///< there is no adb
    serverRestarts, ///< another adb of another version ends this one's server, and the other way round
    portTaken,      ///< adb's server cannot have its port
    noAnswer,       ///< the phone is ready and silent
    other,          ///< in the words of the message
};

} // namespace vantrel
