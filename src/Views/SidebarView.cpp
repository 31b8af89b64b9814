#include "Views/SidebarView.h"

#include "Kit/Accessibility.h"
#include "Kit/Card.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/Spinner.h"
#include "Kit/TextLabel.h"
#include "Records/FileSizeFormat.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"

#include <QPainter>
#include <QProgressBar>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int storageSteps = 10'000; // finer than the bar has pixels

/// The phone's picture; the same whether or not one is connected.
class DeviceIcon : public QWidget {
public:
    explicit DeviceIcon(QWidget *parent) : QWidget(parent) { setFixedSize(36, 36); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient gradient(rect().topLeft(), QRectF(rect()).bottomRight());
        gradient.setColorAt(0, AppTheme::deviceIconTop());
        gradient.setColorAt(1, AppTheme::deviceIconBottom());
        painter.fillPath(roundedRect(rect(), 10), gradient);
        Symbol{QStringLiteral("iphone"), 15, Weight::medium}.paint(painter, rect(), AppTheme::onAccent());
    }
};

} // namespace

class StatusDot : public QWidget {
public:
    explicit StatusDot(QWidget *parent) : QWidget(parent) { setFixedSize(7, 7); }

    void setColor(const ThemeColor &color) {
        if (color == m_color)
            return;
        m_color = color;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(capsule(rect()), QColor(m_color));
    }

private:
    ThemeColor m_color;
};

class ShortcutRow : public PlainButton {
public:
    ShortcutRow(const StorageShortcut &shortcut, QWidget *parent)
        : PlainButton(parent), m_symbol{shortcut.systemImage, 13, Weight::semibold}, m_title(shortcut.title),
          m_loading(new Spinner(Spinner::Size::mini, QStringLiteral("Loading ") + shortcut.title, this)) {
        setObjectName(QStringLiteral("sidebar.shortcut.") + shortcut.title);
        setHelp(QStringLiteral("Browse ") + shortcut.title);
        setCheckable(true);
        setRingRadius(radius);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        auto *row = new QHBoxLayout(this);
        row->setContentsMargins(horizontalPadding, 0, horizontalPadding, 0);
        row->addStretch();
        row->addWidget(m_loading);
    }

    void setLoading(bool loading) { m_loading->setVisible(loading); }

    [[nodiscard]] QSize sizeHint() const override {
        return {SidebarView::columnWidth, titleStyle.lineHeight() + 2 * verticalPadding};
    }

protected:
    void paintContent(QPainter &painter) override {
        if (isChecked())
            paintCard(painter, rect(), radius, AppTheme::accentSoft(), Qt::transparent);
        const QRectF icon(horizontalPadding, 0, iconWidth, height());
        m_symbol.paint(painter, icon, AppTheme::folderBlue());
        const double end = m_loading->isVisible() ? m_loading->x() - gap : width() - horizontalPadding;
        const QRectF title(QPointF(icon.right() + gap, 0), QPointF(end, height()));
        paintText(painter, title, m_title, titleStyle, AppTheme::ink());
    }

private:
    static constexpr double radius = 8;
    static constexpr int horizontalPadding = 10;
    static constexpr int verticalPadding = 7;
    static constexpr int iconWidth = 18;
    static constexpr int gap = 8;
    static constexpr TextStyle titleStyle{13, Weight::medium};

    Symbol m_symbol;
    QString m_title;
    Spinner *m_loading;
};

SidebarView::SidebarView(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("sidebar"));
    describe(this, QAccessible::Grouping, QStringLiteral("Sidebar"));
    setFixedWidth(columnWidth);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(deviceCard());
    column->addWidget(sectionHeader(QStringLiteral("ANDROID STORAGE")));
    column->addWidget(shortcutList(), 1);

    m_rendering.watch(state, &AppState::deviceChanged, &AppState::deviceStatusMessageChanged,
                      &AppState::isRefreshingDeviceChanged, &AppState::isLoadingAndroidChanged,
                      &AppState::selectedShortcutIDChanged);
    m_rendering.renderNow();
}

QWidget *SidebarView::deviceCard() {
    auto *padded = new QWidget(this);
    auto *padding = new QVBoxLayout(padded);
    padding->setContentsMargins(12, 12, 12, 12);
    auto *card = new Card(12, padded);
    card->setObjectName(QStringLiteral("sidebar.device"));
    describe(card, QAccessible::Grouping, QStringLiteral("Android device"));
    padding->addWidget(card);

    const auto text = [card](const QString &name, const TextStyle &style, const ThemeColor &color) {
        auto *label = new TextLabel(style, color, card);
        label->setObjectName(name);
        return label;
    };
    m_title = text(QStringLiteral("sidebar.device.title"), {12.5, Weight::semibold, FontDesign::monospaced},
                   AppTheme::ink());
    m_refreshing = new Spinner(Spinner::Size::mini, QStringLiteral("Checking the device"), card);
    m_refreshing->setObjectName(QStringLiteral("sidebar.device.refreshing"));
    m_dot = new StatusDot(card);
    m_dot->setObjectName(QStringLiteral("sidebar.device.statusDot"));
    m_status = text(QStringLiteral("sidebar.device.status"), {11, Weight::semibold}, AppTheme::danger());
    m_refresh = new IconButton({24, 24}, IconButton::circle, card);
    m_refresh->setObjectName(QStringLiteral("sidebar.refresh"));
    m_refresh->setHelp(QStringLiteral("Refresh connected Android device"));
    m_refresh->setLook({.symbol = {QStringLiteral("arrow.clockwise"), 11, Weight::semibold},
                        .glyph = AppTheme::inkSecondary(),
                        .fill = AppTheme::canvas(),
                        .stroke = AppTheme::stroke()});
    connect(m_refresh, &QAbstractButton::clicked, this,
            [this] { m_state->refreshDevice(AppState::Spinner::shown); });

    const TextStyle caption{10.5, Weight::medium};
    m_message = text(QStringLiteral("sidebar.device.message"), caption, AppTheme::inkTertiary());
    m_message->setMaximumLines(2);
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_storage = new QProgressBar(card);
    m_storage->setRange(0, storageSteps);
    m_storage->setFixedHeight(6);
    m_storage->setObjectName(QStringLiteral("sidebar.storage"));
    m_storage->setAccessibleName(QStringLiteral("Storage used"));
    m_storageText = text(QStringLiteral("sidebar.storage.text"), caption, AppTheme::inkTertiary());
    // The model's name yields first.
    m_storageText->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    m_model = text(QStringLiteral("sidebar.device.model"), caption, AppTheme::inkTertiary());

    auto *status = new QHBoxLayout;
    status->setSpacing(5);
    status->addWidget(m_refreshing);
    status->addWidget(m_dot);
    status->addWidget(m_status, 1);
    auto *titles = new QVBoxLayout;
    titles->setSpacing(3);
    titles->addWidget(m_title);
    titles->addLayout(status);
    auto *header = new QHBoxLayout;
    header->setSpacing(10);
    header->addWidget(new DeviceIcon(card));
    header->addLayout(titles, 1);
    header->addWidget(m_refresh);

    auto *storageRow = new QHBoxLayout;
    storageRow->setSpacing(8);
    storageRow->addWidget(m_storageText);
    storageRow->addStretch();
    storageRow->addWidget(m_model);
    auto *storage = new QVBoxLayout;
    storage->setSpacing(5);
    storage->addWidget(m_storage);
    storage->addLayout(storageRow);

    auto *stack = new QVBoxLayout(card);
    stack->setContentsMargins(12, 12, 12, 12);
    stack->setSpacing(10);
    stack->addLayout(header);
    stack->addWidget(m_message);
    stack->addLayout(storage);
    return padded;
}

QWidget *SidebarView::sectionHeader(const QString &title) {
    auto *header = new QWidget(this);
    auto *label =
        new TextLabel({10, Weight::bold, FontDesign::standard, 0.6}, AppTheme::inkTertiary(), header);
    label->setText(title);
    auto *padding = new QVBoxLayout(header);
    padding->setContentsMargins(14, 0, 14, 6);
    padding->addWidget(label);
    return header;
}

QWidget *SidebarView::shortcutList() {
    auto *scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("sidebar.shortcuts"));
    scroll->setAccessibleName(QStringLiteral("Android storage"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->viewport()->setAutoFillBackground(false);

    auto *rows = new QWidget;
    auto *stack = new QVBoxLayout(rows);
    stack->setContentsMargins(8, 0, 8, 0);
    stack->setSpacing(2);
    for (const StorageShortcut &shortcut : m_state->shortcuts()) {
        auto *row = new ShortcutRow(shortcut, rows);
        connect(row, &QAbstractButton::clicked, this, [this, shortcut] {
            // The row is highlighted at once, whatever the phone takes.
            m_state->setSelectedShortcutID(shortcut.id);
            m_state->browseAndroid(shortcut.path);
        });
        m_shortcuts.append(row);
        stack->addWidget(row);
    }
    stack->addStretch();
    scroll->setWidget(rows);
    rows->setAutoFillBackground(false);
    return scroll;
}

void SidebarView::render() {
    const AndroidDevice &device = m_state->device();
    const bool connected = device.isConnected;
    const bool refreshing = m_state->isRefreshingDevice();
    const ThemeColor statusColor = connected ? AppTheme::success() : AppTheme::danger();

    m_title->setText(connected ? device.id : QStringLiteral("No device"));
    m_refreshing->setVisible(refreshing);
    m_dot->setVisible(!refreshing);
    m_dot->setColor(statusColor);
    m_status->setText(refreshing  ? QStringLiteral("Checking…")
                      : connected ? QStringLiteral("Connected")
                                  : QStringLiteral("Disconnected"));
    m_status->setColor(statusColor);
    m_refresh->setEnabled(!refreshing);

    const QString message = m_state->deviceStatusMessage().value_or(QString());
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());

    const bool storageKnown = connected && device.totalBytes >= 1;
    const double used = storageKnown ? double(device.usedBytes) / double(device.totalBytes) : 0;
    m_storage->setValue(qBound(0, qRound(used * storageSteps), storageSteps));
    m_storageText->setText(storageKnown ? formatFileSize(device.usedBytes) + QStringLiteral(" / ") +
                                              formatFileSize(device.totalBytes)
                                        : unknownLabel() + QStringLiteral(" / ") + unknownLabel());
    m_model->setText(connected ? device.name : QString());
    m_model->setVisible(connected && !device.name.isEmpty());

    const auto &shortcuts = m_state->shortcuts();
    for (qsizetype i = 0; i < shortcuts.size(); ++i) {
        const bool selected = m_state->selectedShortcutID() == shortcuts.at(i).id;
        m_shortcuts.at(i)->setChecked(selected);
        m_shortcuts.at(i)->setLoading(selected && m_state->isLoadingAndroid());
    }
}

void SidebarView::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), AppTheme::sidebar());
}

} // namespace vantrel
