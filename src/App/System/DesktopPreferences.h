#pragma once

#include "Theme/AppTheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace vantrel {

/// What the user has told the desktop about all programs, as its settings portal knows it: once it has
/// answered, and whenever it changes. Where there is no portal, nothing is ever said. Main thread.
class DesktopPreferences : public QObject {
    Q_OBJECT

public:
    /// Asks at once; the answers come as signals.
    explicit DesktopPreferences(const QDBusConnection &bus, QObject *parent = nullptr);

Q_SIGNALS:
    void colorSchemePreferred(vantrel::ColorScheme scheme);
    /// Whether things on the screen should not move more than they must.
    void reducedMotionPreferred(bool reduced);
    void contrastPreferred(vantrel::Contrast contrast);
    /// How many times as large as usual texts should appear, where the toolkit has not made them so.
    void textScalePreferred(double scale);
    /// Which buttons windows have on either side of their title bars, as "menu,close:minimize,maximize".
    void titleButtonsPreferred(const QString &layout);
    /// The longest time between the clicks of a double-click, in milliseconds.
    void doubleClickPreferred(int interval);

private:
    /// Takes the message whole: a slot with its three arguments is not called.
    Q_SLOT void takeChange(const QDBusMessage &change);
    void ask(QDBusConnection bus);
    void take(const QString &group, const QString &key, const QVariant &value);
};

} // namespace vantrel
