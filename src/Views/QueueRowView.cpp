#include "Views/QueueRowView.h"

#include "Kit/Accessibility.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QProgressBar>

namespace vantrel {

namespace {

constexpr int horizontalPadding = 12;
constexpr int verticalPadding = 10;
constexpr int columnGap = 12;
constexpr int lineGap = 4;
constexpr int iconWidth = 22;
constexpr int numbersWidth = 110;
constexpr int barHeight = 5;

constexpr TextStyle nameStyle{12.5, Weight::semibold};
constexpr TextStyle routeStyle{10.5, Weight::medium};

ThemeColor barColor(const QueueItemStatus &status) {
    if (status.is<QueueItemStatus::Completed>())
        return AppTheme::success();
    if (status.is<QueueItemStatus::Failed>())
        return AppTheme::danger();
    if (status.is<QueueItemStatus::Waiting>())
        return AppTheme::strokeStrong();
    return AppTheme::progress();
}

double barFraction(const QueueItemStatus &status) {
    if (const auto *progress = status.progress())
        return progress->fraction;
    return status.is<QueueItemStatus::Completed>() ? 1 : 0;
}

} // namespace

/// A progress bar in the colour of its copy's state.
class QueueBar : public QProgressBar {
public:
    using QProgressBar::QProgressBar;

    void setProgress(double fraction, const ThemeColor &fill) {
        if (qFuzzyCompare(1 + fraction, 1 + m_fraction) && fill == m_fill)
            return;
        m_fraction = fraction;
        m_fill = fill;
        setValue(qRound(qBound(0.0, fraction, 1.0) * 100));
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        paintProgress(painter, rect(), m_fraction, m_fill, AppTheme::stroke());
    }

private:
    double m_fraction = 0;
    ThemeColor m_fill = AppTheme::progress();
};

QueueRowView::QueueRowView(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("queue.row"));
    describe(this, QAccessible::ListItem, {});

    const auto text = [this](const QString &name, const TextStyle &style, const ThemeColor &color) {
        auto *label = new TextLabel(style, color, this);
        label->setObjectName(name);
        return label;
    };
    m_name = text(QStringLiteral("queue.row.name"), nameStyle, AppTheme::ink());
    m_route = text(QStringLiteral("queue.row.route"), routeStyle, AppTheme::inkTertiary());
    m_route->setElision(Elision::middle);
    m_bar = new QueueBar(this);
    m_bar->setFixedHeight(barHeight);
    m_bar->setObjectName(QStringLiteral("queue.row.bar"));
    m_bar->setAccessibleName(QStringLiteral("Progress"));
    m_progress = text(QStringLiteral("queue.row.progress"), {11, Weight::medium}, AppTheme::inkSecondary());
    m_percent = text(QStringLiteral("queue.row.percent"), {11, Weight::semibold, FontDesign::monospaced},
                     AppTheme::ink());
    for (TextLabel *number : {m_progress, m_percent}) {
        number->setFixedWidth(numbersWidth);
        number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    m_remove = new IconButton({22, 22}, IconButton::circle, this);
    m_remove->setObjectName(QStringLiteral("queue.row.remove"));
    m_remove->setHelp(QStringLiteral("Remove this transfer from the queue"));
    m_remove->setLook({.symbol = {QStringLiteral("xmark"), 10, Weight::bold},
                       .glyph = AppTheme::inkSecondary(),
                       .fill = AppTheme::canvas(),
                       .stroke = AppTheme::stroke()});
    connect(m_remove, &QAbstractButton::clicked, this, [this] { Q_EMIT removeRequested(m_item.id); });

    auto *details = new QVBoxLayout;
    details->setSpacing(lineGap);
    details->addWidget(m_name);
    details->addWidget(m_route);
    details->addWidget(m_bar);
    auto *numbers = new QVBoxLayout;
    numbers->setSpacing(2);
    numbers->addStretch();
    numbers->addWidget(m_progress);
    numbers->addWidget(m_percent);
    numbers->addStretch();
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(horizontalPadding + iconWidth + columnGap, verticalPadding, horizontalPadding,
                            verticalPadding);
    row->setSpacing(columnGap);
    row->addLayout(details, 1);
    row->addLayout(numbers);
    row->addWidget(m_remove);
}

int QueueRowView::rowHeight() {
    static const int height = 2 * verticalPadding + nameStyle.lineHeight() + lineGap +
                              routeStyle.lineHeight() + lineGap + barHeight;
    return height;
}

void QueueRowView::setItem(const QueueItem &item) {
    if (item == m_item)
        return;
    const bool otherKind = item.isDirectory != m_item.isDirectory;
    m_item = item;
    m_name->setText(item.name);
    m_route->setText(item.sourcePath + QStringLiteral("  →  ") + item.destinationPath);
    m_bar->setProgress(barFraction(item.status), barColor(item.status));
    m_progress->setText(item.progressLabel());
    m_percent->setText(item.percentLabel());

    const QString name = displayText(item.name);
    if (name != accessibleName())
        setAccessibleName(name);
    const QString progress = displayText(item.progressLabel()) + QStringLiteral(", ") + item.percentLabel();
    if (progress != accessibleDescription())
        setAccessibleDescription(progress);
    if (otherKind)
        update(0, 0, horizontalPadding + iconWidth, height());
}

void QueueRowView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const Symbol symbol{m_item.isDirectory ? QStringLiteral("folder.fill") : QStringLiteral("doc.fill"), 14,
                        Weight::semibold};
    symbol.paint(painter, QRectF(horizontalPadding, 0, iconWidth, height()),
                 m_item.isDirectory ? AppTheme::folderBlue() : AppTheme::inkSecondary());
}

} // namespace vantrel
