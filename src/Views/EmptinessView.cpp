#include "Views/EmptinessView.h"

#include "Kit/Accessibility.h"
#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/ScrollPane.h"
#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextLabel.h"

#include <QPainter>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int columnWidth = 300;
constexpr QSize pictureSize(112, 96);
constexpr double line = 2;

void paintPhone(QPainter &painter) {
    const QRectF body(32, 4, 48, 88);
    paintCard(painter, body, 11, AppTheme::accentSoft(), AppTheme::accent(), line);
    paintCard(painter, body.adjusted(6, 6, -6, -16), 6, AppTheme::surface(),
              AppTheme::accent().withOpacity(0.35));
    painter.fillPath(capsule({49, 81, 14, 3}), QColor(AppTheme::accent().withOpacity(0.6)));
}

void paintFolder(QPainter &painter) {
    const QColor ink = AppTheme::folderBlue();
    QPainterPath back = roundedRect({17, 22, 78, 60}, 9);
    back = back.united(roundedRect({17, 14, 36, 30}, 8));
    painter.fillPath(back, QColor(AppTheme::folderBlue().withOpacity(0.16)));
    painter.strokePath(back, QPen(ink, line));
    paintCard(painter, {16, 38, 80, 45}, 9, AppTheme::surface(), ink, line);
    painter.fillPath(roundedRect({16, 38, 80, 45}, 9), QColor(AppTheme::folderBlue().withOpacity(0.10)));
}

/// What tells one state from another, in the lower right corner.
void paintBadge(QPainter &painter, const Emptiness &emptiness, const QPointF &centre) {
    constexpr double radius = 16;
    constexpr double gap = 3;
    const auto circle = [&](double size, const QColor &color) {
        QPainterPath path;
        path.addEllipse(centre, size, size);
        painter.fillPath(path, color);
    };
    circle(radius + gap, AppTheme::surface());
    circle(radius, emptiness.mood == Emptiness::Mood::calm ? AppTheme::accent() : AppTheme::systemOrange());
    const QRectF place(centre - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
    Symbol{emptiness.badge, 14, Weight::semibold}.paint(painter, place, AppTheme::onAccent());
}

void paintPicture(QPainter &painter, const Emptiness &emptiness) {
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isPhone = emptiness.subject == Emptiness::Subject::phone;
    isPhone ? paintPhone(painter) : paintFolder(painter);
    if (!emptiness.badge.isEmpty())
        paintBadge(painter, emptiness, isPhone ? QPointF(80, 74) : QPointF(92, 76));
}

/// One step with its number, or a remark without one.
QLayout *rowOfStep(const QString &text, int number) {
    constexpr int least = 18;
    constexpr TextStyle style{12, Weight::regular};
    const int side = std::max(least, style.lineHeight());
    auto *words = new TextLabel(style, AppTheme::inkSecondary());
    words->setText(text);
    words->setMaximumLines(12);
    if (number == 0) {
        words->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        return rowOf(0, {{words, 1}});
    }
    words->setAccessibleName(QStringLiteral("%1. %2").arg(number).arg(text));
    words->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    auto *disc = new Canvas([number](QPainter &painter, const QRectF &rect) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(capsule(rect), QColor(AppTheme::accentSoft()));
        paintText(painter, rect, QString::number(number), {10.5, Weight::bold}, AppTheme::inkSecondary(),
                  Qt::AlignCenter);
    });
    disc->setFixedSize(side, side);
    auto *row =
        rowOf(10, {disc, {columnOf(0, {BoxItem::gap((side - style.lineHeight()) / 2), {words, 1}}), 1}});
    row->setAlignment(disc, Qt::AlignTop);
    return row;
}

} // namespace

EmptinessView::EmptinessView(QWidget *parent)
    : QWidget(parent),
      m_picture(
          new Canvas([this](QPainter &painter, const QRectF &) { paintPicture(painter, m_emptiness); })),
      m_heading(new TextLabel({14, Weight::semibold}, AppTheme::ink())), m_steps(new QWidget),
      m_button(new QPushButton) {
    setObjectName(QStringLiteral("emptiness"));
    m_picture->setFixedSize(pictureSize);
    m_heading->setObjectName(QStringLiteral("emptiness.heading"));
    m_heading->setMaximumLines(4);
    m_heading->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_button->setObjectName(QStringLiteral("emptiness.button"));
    m_button->setFocusPolicy(Qt::TabFocus);
    m_button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(m_button, &QAbstractButton::clicked, this, [this] {
        if (!m_emptiness.command.isEmpty())
            m_button->setText(QStringLiteral("Copied"));
        Q_EMIT acted();
    });
    m_column = columnOf(0, {BoxItem::room(1), m_picture, BoxItem::gap(10), m_heading, BoxItem::gap(10),
                            m_steps, BoxItem::gap(14), m_button, BoxItem::room(1)});
    m_column->setAlignment(m_picture, Qt::AlignHCenter);
    m_column->setAlignment(m_button, Qt::AlignHCenter);
    auto *middle = new QWidget;
    middle->setLayout(m_column);
    auto *content = new QWidget;
    content->setLayout(rowOf(0, {BoxItem::room(), {middle, 1}, BoxItem::room()}, {20, 12, 20, 12}));
    m_pane = new ScrollPane(QStringLiteral("What to do"), content);
    setLayout(columnOf(0, {{m_pane, 1}}));
}

void EmptinessView::setEmptiness(const Emptiness &emptiness) {
    if (emptiness == m_emptiness)
        return;
    m_emptiness = emptiness;
    describe(this, QAccessible::Grouping, emptiness.heading);
    m_heading->setText(emptiness.heading);
    auto *steps = new QWidget;
    auto *rows = columnOf(8, {});
    for (qsizetype i = 0; i < emptiness.steps.size(); ++i)
        rows->addLayout(rowOfStep(emptiness.steps.at(i), emptiness.steps.size() > 1 ? int(i) + 1 : 0));
    steps->setLayout(rows);
    delete m_column->replaceWidget(m_steps, steps);
    delete std::exchange(m_steps, steps);
    steps->setVisible(!emptiness.steps.isEmpty());
    m_button->setText(emptiness.command.isEmpty() ? QStringLiteral("Try Again")
                                                  : QStringLiteral("Copy Command"));
    m_button->setVisible(!emptiness.command.isEmpty() || emptiness.mayTryAgain);
    m_picture->update();
    arrange();
}

void EmptinessView::arrange() {
    m_picture->hide();
    m_column->parentWidget()->setMaximumWidth(withTexts(columnWidth));
    m_column->invalidate();
    const QMargins margins = m_pane->widget()->layout()->contentsMargins();
    const int width = qMin(withTexts(columnWidth), this->width() - margins.left() - margins.right());
    const int words = m_column->totalHeightForWidth(width);
    m_picture->setVisible(words + pictureSize.height() <= height() - margins.top() - margins.bottom());
}

void EmptinessView::resizeEvent(QResizeEvent *) {
    arrange();
}

void EmptinessView::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) // texts appear in another size
        arrange();
}

} // namespace vantrel
