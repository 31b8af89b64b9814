#pragma once

#include "App/Window/WindowChromeCoordinator.h"
#include "Theme/AppTheme.h"

#include <QWidget>

#include <array>

class QAbstractButton;
class QHBoxLayout;

namespace vantrel {

class TextLabel;

/// The band at the top of the window: the window's buttons at the left, its title, the toolbar's buttons at
/// the right. It takes no clicks between them; the window chrome does. On the Mac the window brings its
/// buttons itself and the band leaves room for them.
class TitleBar : public QWidget {
    Q_OBJECT

public:
    explicit TitleBar(QWidget *parent = nullptr);

    /// Null on the Mac.
    [[nodiscard]] QAbstractButton *button(WindowButton button) const { return m_buttons.at(size_t(button)); }

    void setTitle(const QString &title);

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
    double m_cornerRadius = 0;
    bool m_active = true;
};

} // namespace vantrel
