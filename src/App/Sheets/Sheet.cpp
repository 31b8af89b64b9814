#include "App/Sheets/Sheet.h"

#include "Kit/Accessibility.h"
#include "Kit/Canvas.h"
#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int gapBelowTitleBar = 24;
constexpr double cornerRadius = 12;

/// What lies below the window's title bar.
QRect contentOf(const QWidget &window) {
    QRect content = window.contentsRect();
    const auto *mainWindow = qobject_cast<const QMainWindow *>(&window);
    if (const QWidget *titleBar = mainWindow ? mainWindow->menuWidget() : nullptr)
        content.setTop(titleBar->geometry().bottom() + 1);
    return content;
}

} // namespace

Sheet::Sheet(const QString &name, int width, QWidget *window)
    : QDialog(window, Qt::SubWindow | Qt::FramelessWindowHint), // in the window, and Tab goes round in it
      m_card(new Card(cornerRadius, this)), m_content(new QVBoxLayout(m_card)), m_firstFocus(this) {
    describe(this, QAccessible::Dialog, name);
    setAttribute(Qt::WA_NoMousePropagation);
    m_card->setObjectName(QStringLiteral("sheet.card"));
    m_card->setFixedWidth(withTexts(width));
    m_content->setSpacing(0);
    m_content->setContentsMargins(0, 0, 0, 0);
    m_content->setSizeConstraint(QLayout::SetNoConstraint);
    m_slide.setStartValue(0.0);
    m_slide.setEndValue(1.0);
    m_slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, &Sheet::place);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) { keepFocus(now); });
}

Sheet::~Sheet() {
    hide();                                   // as long as it is one, to give the keyboard back
    disconnect(qApp, nullptr, this, nullptr); // its fields may lose the keyboard with its window
}

QPushButton *Sheet::makeButton(const QString &title, const QString &objectName) {
    auto *button = new QPushButton(title, m_card);
    button->setObjectName(objectName);
    button->setAutoDefault(false);        // or Return would press the one that has the keyboard
    button->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it was
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return button;
}

void Sheet::open() {
    for (const Sheet *other : parentWidget()->findChildren<Sheet *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (other != this && !other->isHidden()) {
            connect(other, &QDialog::finished, this, &Sheet::open, Qt::SingleShotConnection);
            return;
        }
    }
    fitHeight();
    m_slide.setDuration(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this));
    m_slide.start();
    place();
    raise();
    parentWidget()->installEventFilter(this);

    m_focusBefore = window()->focusWidget();
    setResult(0);
    show(); // where the toolkit would give the keyboard to the default button
    m_focus = m_firstFocus;
    m_focus->setFocus(Qt::OtherFocusReason);
}

void Sheet::fitHeight() {
    const int width = m_card->width();
    m_content->invalidate();
    m_card->setFixedHeight(m_content->hasHeightForWidth() ? m_content->totalHeightForWidth(width)
                                                          : m_content->totalSizeHint().height());
    update();
}

void Sheet::hideEvent(QHideEvent *) {
    if (!isHidden()) // it is still open, its window is not to be seen
        return;
    parentWidget()->removeEventFilter(this);
    m_slide.stop();
    // Before the toolkit looks for a place of its own choice, which may be any button.
    m_focus.clear();
    if (m_focusBefore && m_focusBefore->isVisible() && m_focusBefore->isEnabled())
        m_focusBefore->setFocus(Qt::OtherFocusReason);
    else if (QWidget *focused = window()->focusWidget())
        focused->clearFocus();
}

void Sheet::keepFocus(QWidget *now) {
    if (!m_focus || (now && now->window() != window()) || !window()->isActiveWindow())
        return;
    if (now && (now == this || isAncestorOf(now)))
        m_focus = now;
    else
        m_focus->setFocus(Qt::OtherFocusReason);
}

bool Sheet::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest ||
        event->type() == QEvent::ContentsRectChange)
        place();
    return QDialog::eventFilter(watched, event);
}

void Sheet::mousePressEvent(QMouseEvent *event) {
    event->accept(); // beside the card: nothing
}

void Sheet::place() {
    setGeometry(contentOf(*parentWidget()));
    const double away = 1 - m_slide.currentValue().toDouble();
    const int fall = gapBelowTitleBar + m_card->height();
    m_card->move((width() - m_card->width()) / 2, gapBelowTitleBar - qRound(away * fall));
    update();
}

void Sheet::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), AppTheme::dimming().withOpacity(m_slide.currentValue().toDouble()));
    constexpr int shadow = 24;
    paintShadow(painter, m_card->geometry(), cornerRadius, shadow);
}

} // namespace vantrel
