#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <optional>

/// The Mac's ways of telling those who look elsewhere, with the interfaces of Notification.h and
/// LauncherEntry.h. Not run yet.
namespace vantrel {

/// The Mac needs none.
struct SessionBus {};

/// The program's one notification. The user is asked once whether it may be shown; a click on it brings the
/// program to the front, as the Mac does by itself. A program outside of a bundle shows none. Main thread.
class Notification : public QObject {
    Q_OBJECT

public:
    explicit Notification(const SessionBus &bus, QObject *parent = nullptr);
    ~Notification() override;

    void show(const QString &heading, const QString &detail);
    void withdraw();

Q_SIGNALS:
    void clicked(const QByteArray &activationToken); ///< never, here
};

/// The program's icon in the Dock. It is plain again when this object goes. Main thread.
class LauncherEntry : public QObject {
    Q_OBJECT

public:
    struct Look {
        std::optional<double> progress = {}; ///< 0 to 1; absent: no bar
        bool isUrgent = false;               ///< it asks to be looked at, by jumping once

        friend bool operator==(const Look &, const Look &) = default;
    };

    explicit LauncherEntry(const SessionBus &bus, QObject *parent = nullptr);
    ~LauncherEntry() override;

    /// However often this is called, the icon is drawn once for each hundredth.
    void show(const Look &look);

private:
    Look m_shown;
};

} // namespace vantrel
