#include "Kit/Spinner.h"

#include "Kit/Accessibility.h"

#include <QStyleOption>

namespace vantrel {

constexpr int stepInterval = 100; // milliseconds

Spinner::Spinner(Size size, const QString &name, QWidget *parent) : QProgressBar(parent) {
    const int side = size == Size::mini ? 12 : 18;
    setFixedSize(side, side);
    setRange(0, 0);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    describe(this, QAccessible::ProgressBar, name);
}

void Spinner::showEvent(QShowEvent *) {
    if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0)
        m_timer.start(stepInterval, this);
}

void Spinner::hideEvent(QHideEvent *) {
    m_timer.stop();
}

void Spinner::timerEvent(QTimerEvent *) {
    ++m_step;
    update();
}

void Spinner::initStyleOption(QStyleOptionProgressBar *option) const {
    QProgressBar::initStyleOption(option);
    option->progress = m_step;
}

} // namespace vantrel
