#pragma once

#include "App/Window/WindowChromeCoordinator.h"
#include "Theme/AppTheme.h"

#include <QWidget>

#include <array>

class QAbstractButton;
class QHBoxLayout;

namespace vantrel {

class TextLabel;

/// The band at the top of the window: the window's buttons where its lines begin unless the desktop has them
/// elsewhere, its title, the toolbar's buttons at the other end. It takes no clicks between them; the window
/// chrome does. On the Mac the window brings its buttons itself and the band leaves room for them.
class TitleBar : public QWidget {
    Q_OBJECT

public:
    explicit TitleBar(QWidget *parent = nullptr);

    /// Null on the Mac.
    [[nodiscard]] QAbstractButton *button(WindowButton button) const { return m_buttons.at(size_t(button)); }

    void setTitle(const QString &title);

    /// Puts the window's buttons where the desktop's layout has them, as "menu,close:minimize,maximize":
    /// those before the colon where lines begin, the others at the other end, in this order. Those that it
    /// does not name are not shown. Nothing happens on the Mac.
    void setButtonLayout(const QString &layout);
    /// How much the toolbar and the window's buttons behind it take of the band's end, in layout pixels.
    [[nodiscard]] int endWidth() const;

    /// Puts the widget at the right end of the band, behind those that are there. Together they should stay
    /// within WindowChromeCoordinator::toolbarWidth.
    void addToolbarWidget(QWidget *widget);

    /// Radius of the upper corners, 0 for square ones.
    void setCornerRadius(double radius);

    /// Whether the window has the keyboard; the band of one that has not is quieter.
    void setActive(bool active);

Q_SIGNALS:
    void windowButtonClicked(vantrel::WindowButton button);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] ThemeColor titleColor() const {
        return m_active ? AppTheme::ink() : AppTheme::inkTertiary();
    }

    std::array<QAbstractButton *, 3> m_buttons{};
    TextLabel *m_title = nullptr; ///< with the first title
    QHBoxLayout *m_toolbar;
    QHBoxLayout *m_leading;  ///< the window's buttons before the title
    QHBoxLayout *m_trailing; ///< and behind the toolbar
    double m_cornerRadius = 0;
    bool m_active = true;
};

} // namespace vantrel
