#pragma once

#include "Kit/Symbol.h"
#include "Theme/AppTheme.h"

#include <QAbstractButton>
#include <QAccessible>

namespace vantrel {

/// A button without a bezel that subclasses paint, since a style is not told of symbols in the colours of
/// both schemes. It is clicked by releasing the mouse inside it, by Space and by Return; Tab reaches it, and
/// a click leaves the keyboard where it was. `clicked()` is its action.
///
/// A checkable button shows what the model says: a click does not flip it, the next render() does.
class PlainButton : public QAbstractButton {
public:
    explicit PlainButton(QWidget *parent = nullptr);

    /// The tool tip, which is also the name for assistive technology, and what kind of control it is there.
    void setHelp(const QString &help, QAccessible::Role role = QAccessible::Button);

    /// Partly, when it stands for several things of which only some are on.
    [[nodiscard]] virtual Qt::CheckState checkState() const {
        return isChecked() ? Qt::Checked : Qt::Unchecked;
    }

    /// Corner radius of the focus ring, in layout pixels.
    void setRingRadius(double radius) { m_ringRadius = radius; }

protected:
    /// Paints everything but the focus ring, on rect().
    virtual void paintContent(QPainter &painter) = 0;

    void paintEvent(QPaintEvent *event) final;
    void keyPressEvent(QKeyEvent *event) override;
    void nextCheckState() override {}

private:
    double m_ringRadius = 6;
};

/// A button that shows one symbol on a small card. The view sets the look that fits its state:
///
///     auto *refresh = new IconButton({24, 24}, IconButton::circle);
///     refresh->setLook({.symbol = {u"arrow.clockwise"_s, 11, Weight::semibold},
///                       .glyph = AppTheme::inkSecondary(),
///                       .fill = AppTheme::canvas(),
///                       .stroke = AppTheme::stroke()});
///     refresh->setHelp(u"Refresh"_s);
class IconButton : public PlainButton {
    Q_OBJECT

public:
    struct Look {
        Symbol symbol = {};
        ThemeColor glyph = AppTheme::inkSecondary();
        ThemeColor fill = {};
        ThemeColor stroke = {};
        double strokeWidth = 1;
        double disabledOpacity = 1; ///< of the whole button while it is disabled

        friend bool operator==(const Look &, const Look &) = default;
    };

    /// As `radius`: as round as the size allows.
    static constexpr double circle = 1e6;

    /// A button of a fixed size; `radius` is that of its corners, both in layout pixels.
    IconButton(QSize size, double radius, QWidget *parent = nullptr);

    /// Repaints only when the look differs.
    void setLook(const Look &look);
    [[nodiscard]] const Look &look() const { return m_look; }

    [[nodiscard]] QSize sizeHint() const override { return maximumSize(); }

protected:
    void paintContent(QPainter &painter) override;

private:
    double m_radius;
    Look m_look;
};

} // namespace vantrel
