#include "Views/Emptiness.h"

#include "ADB/ADBError.h"
#include "Records/TextLength.h"
#include "State/DeviceSearch.h"

#include <QHash>
#include <QSysInfo>

namespace vantrel::EmptyStates {

namespace {

using Subject = Emptiness::Subject;
using Mood = Emptiness::Mood;

/// The command that installs adb here; empty where that is not known.
QString installCommand() {
    static const QHash<QString, QString> commands{
        {QStringLiteral("arch"), QStringLiteral("sudo pacman -S android-tools")},
        {QStringLiteral("debian"), QStringLiteral("sudo apt install adb")},
        {QStringLiteral("fedora"), QStringLiteral("sudo dnf install android-tools")},
        {QStringLiteral("macos"), QStringLiteral("brew install android-platform-tools")},
        {QStringLiteral("opensuse-tumbleweed"), QStringLiteral("sudo zypper install android-tools")},
        {QStringLiteral("ubuntu"), QStringLiteral("sudo apt install adb")},
    };
    return commands.value(QSysInfo::productType());
}

/// Puts the rule in place that lies in Resources/desktop/51-vantrel-android.rules: whoever sits at the screen
/// may use what has the interface that adb talks to.
QString permissionCommand() {
    return QStringLiteral("echo 'ACTION!=\"remove\", SUBSYSTEM==\"usb\", ENV{DEVTYPE}==\"usb_device\", "
                          "ENV{ID_USB_INTERFACES}==\"*:ff4201:*\", TAG+=\"uaccess\"' | sudo tee "
                          "/etc/udev/rules.d/51-vantrel-android.rules && sudo udevadm control --reload");
}

Emptiness phone(const char *badge, Mood mood, const char *heading, const QStringList &steps) {
    return {Subject::phone, QLatin1String(badge), mood, QString::fromUtf8(heading), steps};
}

Emptiness silentPhone() {
    Emptiness silent = phone("moon", Mood::attention, "",
                             {QStringLiteral("Unlock the phone."),
                              QStringLiteral("If that does not help, unplug it and plug it in again.")});
    silent.heading = ADBError::noAnswer().errorDescription();
    silent.mayTryAgain = true;
    return silent;
}

} // namespace

Emptiness ofPhone(PhoneTrouble trouble, const QString &message) {
    const QString replug = QStringLiteral("Unplug the phone and plug it in again.");
    switch (trouble) {
    case PhoneTrouble::noPhone:
        return phone(
            "cable.connector", Mood::calm, "Connect your phone",
            {QStringLiteral("Plug it in with a cable that carries data, not only power."),
             QStringLiteral("On the phone, open Settings, About phone, and tap Build number seven times."),
             QStringLiteral("In Settings, Developer options, turn on USB debugging.")});
    case PhoneTrouble::unauthorized:
        return phone("checkmark", Mood::calm, "The phone asks whether you may",
                     {QStringLiteral("Unlock the phone and tap Allow."),
                      QStringLiteral("If it does not ask, unplug it and plug it in again.")});
    case PhoneTrouble::authorizing:
        return phone("ellipsis", Mood::calm, "Connecting to the phone…",
                     {QStringLiteral("If the phone asks about USB debugging, tap Allow.")});
    case PhoneTrouble::offline:
        return phone("moon", Mood::attention, "The phone is offline",
                     {QStringLiteral("Unlock the phone."), replug,
                      QStringLiteral("If that does not help, turn USB debugging off and on again.")});
    case PhoneTrouble::noPermissions: {
        Emptiness refused = phone(
            "lock", Mood::attention, "You may not use this phone yet",
            {QStringLiteral("Copy the command and run it in a terminal: it adds a rule (udev) that lets "
                            "you use phones on USB."),
             replug});
        refused.command = permissionCommand();
        return refused;
    }
    case PhoneTrouble::recovery:
        return phone("arrow.clockwise", Mood::attention, "The phone is in recovery mode",
                     {QStringLiteral("On the phone, choose “Reboot system now”.")});
    case PhoneTrouble::sideload:
        return phone("arrow.clockwise", Mood::attention, "The phone waits for an update by cable",
                     {QStringLiteral("On the phone, cancel the update (sideload)."),
                      QStringLiteral("Choose “Reboot system now”.")});
    case PhoneTrouble::bootloader:
        return phone("arrow.clockwise", Mood::attention, "The phone is in its bootloader",
                     {QStringLiteral("On the phone, choose “Start” with the volume keys."),
                      QStringLiteral("Press the power button.")});
    case PhoneTrouble::toolMissing: {
        Emptiness missing = phone("terminal", Mood::attention, "adb is missing", {});
        missing.command = installCommand();
        missing.steps = {
            missing.command.isEmpty()
                ? QStringLiteral("Install Android’s tool adb; most systems have it in a package "
                                 "named adb or android-tools.")
                : QString(QStringLiteral("Copy the command and run it in a terminal: ") % missing.command),
            QStringLiteral("Nothing else is to be done: it is found by itself.")};
        missing.mayTryAgain = missing.command.isEmpty();
        return missing;
    }
    case PhoneTrouble::serverRestarts: {
        Emptiness clash =
            phone("exclamationmark", Mood::attention, "Two versions of adb are in each other’s way",
                  {QStringLiteral("Close other programs that use adb, such as a development environment."),
                   QStringLiteral("If it goes on, let them use the same version of adb as this program.")});
        clash.mayTryAgain = true;
        return clash;
    }
    case PhoneTrouble::portTaken: {
        const QString port = qEnvironmentVariable("ANDROID_ADB_SERVER_PORT", QStringLiteral("5037"));
        Emptiness taken = phone("exclamationmark", Mood::attention, "adb cannot start",
                                {QString(QStringLiteral("Another program has taken its port, ") % port %
                                         QStringLiteral(". Find it with the command and close it.")),
                                 QStringLiteral("Then refresh the phone.")});
        taken.command = QStringLiteral("sudo ss -ltnp 'sport = :%1'").arg(port);
        return taken;
    }
    case PhoneTrouble::noAnswer:
        return silentPhone();
    case PhoneTrouble::none:
    case PhoneTrouble::other:
        break;
    }
    Emptiness unknown = phone("exclamationmark", Mood::attention, "The phone can’t be shown", {message});
    unknown.mayTryAgain = true;
    return unknown;
}

Emptiness emptyFolder() {
    return {.heading = QStringLiteral("This folder is empty")};
}

Emptiness failed(const QString &reason) {
    if (reason == ADBError::noAnswer().errorDescription())
        return silentPhone();
    const bool isForbidden = reason.contains(QLatin1String("permission"), Qt::CaseInsensitive);
    return {.badge = isForbidden ? QStringLiteral("lock") : QStringLiteral("exclamationmark"),
            .mood = Mood::attention,
            .heading = isForbidden ? QStringLiteral("This folder may not be read")
                                   : QStringLiteral("This folder can’t be shown"),
            .steps = {reason},
            .mayTryAgain = true};
}

Emptiness failedSearch(const QString &reason) {
    Emptiness search = failed(reason);
    if (reason != ADBError::noAnswer().errorDescription())
        search.heading = QStringLiteral("The search failed");
    return search;
}

Emptiness noHits(const QString &query, AndroidSearchScope scope) {
    const bool isEverywhere = scope == AndroidSearchScope::everywhere;
    if (isEverywhere && characterCount(query) < DeviceSearch::shortestQuery)
        return {.badge = QStringLiteral("magnifyingglass"),
                .heading = QStringLiteral("Search the whole phone"),
                .steps = {QStringLiteral("Type at least 2 characters.")}};
    const QString place =
        isEverywhere ? QStringLiteral("Nothing on the phone") : QStringLiteral("Nothing in this folder");
    return {.badge = QStringLiteral("magnifyingglass"),
            .heading = QStringLiteral("Nothing found"),
            .steps = {QString(place % QStringLiteral(" has “") % query % QStringLiteral("” in its name."))}};
}

} // namespace vantrel::EmptyStates
