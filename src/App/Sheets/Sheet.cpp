#include "App/Sheets/Sheet.h"

#include "Kit/Accessibility.h"
#include "Kit/Canvas.h"
#include "Kit/ScrollPane.h"
#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int gapBelowTitleBar = 24;
constexpr int leastGap = 16; // on the other sides
constexpr double cornerRadius = 12;

/// What lies below the window's title bar.
QRect contentOf(const QWidget &window) {
    QRect content = window.contentsRect();
    const auto *mainWindow = qobject_cast<const QMainWindow *>(&window);
    if (const QWidget *titleBar = mainWindow ? mainWindow->menuWidget() : nullptr)
        content.setTop(titleBar->geometry().bottom() + 1);
    return content;
}

QVBoxLayout *bareColumn() {
    auto *column = new QVBoxLayout;
    column->setSpacing(0);
    column->setContentsMargins(0, 0, 0, 0);
    return column;
}

int heightOf(QVBoxLayout &column, int width) {
    column.invalidate();
    return column.hasHeightForWidth() ? column.totalHeightForWidth(width) : column.totalSizeHint().height();
}

QWidget *holding(QLayout *layout) {
    auto *holder = new QWidget;
    holder->setLayout(layout);
    return holder;
}

} // namespace

Sheet::Sheet(const QString &name, int width, QWidget *window)
    : QDialog(window, Qt::SubWindow | Qt::FramelessWindowHint), // in the window, and Tab goes round in it
      m_width(width), m_card(new Card(cornerRadius, this)), m_content(bareColumn()),
      m_pane(new ScrollPane(name, holding(m_content))), m_line(new Divider), m_footer(bareColumn()),
      m_firstFocus(this) {
    describe(this, QAccessible::Dialog, name);
    setAttribute(Qt::WA_NoMousePropagation);
    m_card->setObjectName(QStringLiteral("sheet.card"));
    m_pane->setObjectName(QStringLiteral("sheet.content"));
    auto *column = bareColumn();
    column->addWidget(m_pane, 1);
    column->addWidget(m_line);
    column->addLayout(m_footer);
    m_card->setLayout(column);
    m_slide.setStartValue(0.0);
    m_slide.setEndValue(1.0);
    m_slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, &Sheet::place);
    connect(m_pane->verticalScrollBar(), &QAbstractSlider::rangeChanged, this, &Sheet::letKeysScroll);
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
    fitCard();
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
    letKeysScroll();
}

void Sheet::fitCard() {
    const QSize room = contentOf(*parentWidget()).size() - QSize(2 * leastGap, gapBelowTitleBar + leastGap);
    const int width = std::min(withTexts(m_width), room.width());
    const int content = heightOf(*m_content, width);
    const int buttons = heightOf(*m_footer, width);
    const int line = m_line->minimumHeight();
    m_line->setVisible(m_lineMode == Line::always || content + buttons > room.height());
    const int whole = content + buttons + (m_line->isVisibleTo(m_card) ? line : 0);
    m_pane->widget()->setMinimumHeight(content); // its fields would yield before they scroll
    m_card->setFixedSize(width, std::min(whole, room.height()));
    update();
}

/// While no control has the keyboard, the content has it, if that scrolls.
void Sheet::letKeysScroll() {
    if (m_focus == this && m_pane->scrolls())
        m_pane->setFocus(Qt::OtherFocusReason);
    else if (m_focus == m_pane && !m_pane->scrolls())
        setFocus(Qt::OtherFocusReason);
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
    if (event->type() == QEvent::Resize || event->type() == QEvent::ContentsRectChange)
        fitCard();
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest ||
        event->type() == QEvent::ContentsRectChange)
        place();
    return QDialog::eventFilter(watched, event);
}

void Sheet::mousePressEvent(QMouseEvent *event) {
    event->accept(); // beside the card: nothing
}

void Sheet::changeEvent(QEvent *event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange && !isHidden()) { // texts appear in another size
        fitCard();
        place();
    }
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
