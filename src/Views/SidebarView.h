#pragma once

#include "Kit/RenderScheduler.h"
#include "Records/StorageShortcut.h"
#include "Theme/AppTheme.h"

#include <QList>
#include <QWidget>

class QBoxLayout;
class QProgressBar;

namespace vantrel {

class AppState;
class IconButton;
class PhonePicker;
class Spinner;
class TextLabel;
class ShortcutRow;

/// The column at the left of the window: the phone with its storage, and the shortcuts to its folders.
class SidebarView : public QWidget {
public:
    /// How wide it is, with texts as large as they appear; layout pixels.
    [[nodiscard]] static int columnWidth();

    /// The model must outlive the view.
    explicit SidebarView(AppState *state, QWidget *parent = nullptr);

    /// Of the rows beside it, this is the one that Tab stops at.
    static void stopTabAt(QWidget *row);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *deviceCard();
    QWidget *shortcutList();
    void addRow(const StorageShortcut &shortcut);
    void showShortcuts();
    void render();
    [[nodiscard]] ThemeColor statusColor() const;

    AppState *m_state;
    TextLabel *m_title = nullptr;
    PhonePicker *m_picker = nullptr; ///< in the title's place while there is more than one phone
    Spinner *m_refreshing = nullptr;
    QWidget *m_dot = nullptr;
    TextLabel *m_status = nullptr;
    IconButton *m_refresh = nullptr;
    TextLabel *m_message = nullptr;
    QProgressBar *m_storage = nullptr;
    TextLabel *m_storageText = nullptr;
    TextLabel *m_model = nullptr;
    QList<ShortcutRow *> m_shortcuts; ///< in the model's order, the cards behind them
    QList<StorageShortcut> m_cards;   ///< that have a row
    QBoxLayout *m_rows = nullptr;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
