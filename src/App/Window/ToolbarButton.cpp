#include "App/Window/ToolbarButton.h"

#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QPainter>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int leastWidth = 52;
constexpr int gap = 2;
constexpr int ringRoom = 4; // above and below, so that the focus ring leaves the title legible
constexpr TextStyle titleStyle{9, Weight::medium};

} // namespace

ToolbarButton::ToolbarButton(QWidget *parent) : PlainButton(parent), m_symbol{QString(), 13, Weight::medium} {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ToolbarButton::setContent(const QString &systemImage, const QString &title, const QString &help) {
    m_symbol.name = systemImage;
    setHelp(help); // before assistive technology hears of a button that is only called by its title
    setText(title);
    update();
}

QSize ToolbarButton::sizeHint() const {
    return {std::max(leastWidth, withTexts(0.65 * leastWidth)),
            int(m_symbol.naturalSize().height()) + gap + titleStyle.lineHeight() + 2 * ringRoom};
}

void ToolbarButton::paintContent(QPainter &painter) {
    const double symbolHeight = m_symbol.naturalSize().height();
    const QRectF title(0, ringRoom + symbolHeight + gap, width(), titleStyle.lineHeight());
    m_symbol.paint(painter, QRectF(0, ringRoom, width(), symbolHeight), AppTheme::ink());
    paintText(painter, title, text(), titleStyle, AppTheme::ink(), Qt::AlignCenter);
}

} // namespace vantrel
