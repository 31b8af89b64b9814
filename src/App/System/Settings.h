#pragma once

#include "Records/FileOrder.h"
#include "Records/Pane.h"
#include "Theme/AppTheme.h"

#ifndef Q_OS_MACOS
#include "Preferences/PreferencesFile.h"
#endif

#include <QObject>
#include <QPoint>
#include <QSettings>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <optional>

namespace vantrel {

/// How the user left the window; nothing where nobody has said so yet. In layout pixels.
struct WindowGeometry {
    std::optional<QSize> size = {};      ///< while it is not zoomed
    std::optional<QPoint> position = {}; ///< of its top left corner, likewise; the desktop may not tell
    bool isZoomed = false;

    friend bool operator==(const WindowGeometry &, const WindowGeometry &) = default;
};

/// The few choices that outlive a start of the program. Whatever state the stored settings are in, there is
/// an answer: what is missing or nonsense counts as not set, and a choice that cannot be stored holds until
/// the program ends. Changes are stored a moment later by themselves. Main thread.
class Settings : public QObject {
    Q_OBJECT

public:
    /// How long the mouse rests before a tool tip appears.
    static constexpr std::chrono::milliseconds toolTipDelay{250};

    /// The settings of the user.
    Settings();
    /// Those in a file of this path.
    explicit Settings(const QString &path);
    ~Settings() override;

    /// Only the stored text "dark" is dark.
    [[nodiscard]] ColorScheme appearancePreference() const;
    /// Whether the user has ever chosen; until then the desktop's own preference may be followed.
    [[nodiscard]] bool hasAppearancePreference() const;
    void setAppearancePreference(ColorScheme scheme);

    /// What is stored may fit no screen that is there now.
    [[nodiscard]] WindowGeometry windowGeometry() const;
    /// Leaves stored what `geometry` says nothing about.
    void setWindowGeometry(const WindowGeometry &geometry);

    /// Stores toolTipDelay where the Mac's toolkit looks for it; elsewhere the program applies it itself.
    void storeToolTipDelay();

    /// What a double-click in the title bar does: "Minimize" or, for any other text, zoom. "Maximize" when
    /// not set. On the Mac this is the choice made in the system's own settings.
    [[nodiscard]] QString doubleClickAction() const;

    /// Whether the user wants no usage signals to be sent. Settings that are there but cannot be read may
    /// hold that wish: then it counts as said, until it is taken back here.
    [[nodiscard]] bool analyticsDisabled() const;
    void setAnalyticsDisabled(bool disabled);

    /// Whether each copy is to be compared with its original.
    [[nodiscard]] bool verifiesCopies() const;
    void setVerifiesCopies(bool verifies);

    /// The most height that the user has given the transfer queue, in layout pixels; nothing until then.
    [[nodiscard]] std::optional<int> queueHeight() const;
    void setQueueHeight(std::optional<int> height);

    /// In what order a pane shows its entries.
    [[nodiscard]] FileOrder fileOrder(BrowserSide side) const;
    void setFileOrder(BrowserSide side, FileOrder order);

    /// How large a grid's tiles are; a TileSize.
    [[nodiscard]] int tileSize() const;
    void setTileSize(int size);

    /// Addresses of phones on the network, as they were stored.
    [[nodiscard]] QStringList wirelessPhones() const;
    void setWirelessPhones(const QStringList &addresses);

    /// Writes what has changed at once. False when it could not be stored.
    bool save();
    /// Why the latest changes could not be stored, as a sentence for the user; empty when they were.
    [[nodiscard]] const QString &problem() const { return m_problem; }

Q_SIGNALS:
    void analyticsDisabledChanged(bool disabled);
    void verifiesCopiesChanged(bool verifies);
    void problemChanged(const QString &problem);

private:
    [[nodiscard]] QString value(const QString &key) const;
    void setValue(const QString &key, const QString &value);

#ifdef Q_OS_MACOS
    QSettings m_store;
#else
    PreferencesFile m_store;
#endif
    QTimer m_saving;
    QString m_problem;
};

} // namespace vantrel
