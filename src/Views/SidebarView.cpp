#include "Views/SidebarView.h"

#include "Kit/Accessibility.h"
#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/Focus.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/Spinner.h"
#include "Kit/TextLabel.h"
#include "Records/FileSizeFormat.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Views/FileItemsView.h"
#include "Views/PhonePicker.h"

#include <QKeyEvent>
#include <QPainter>
#include <QProgressBar>
#include <QScrollArea>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int storageSteps = 10'000; // finer than the bar has pixels

/// The phone's picture; the same whether or not one is connected.
void paintDeviceIcon(QPainter &painter, const QRectF &rect) {
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
    gradient.setColorAt(0, AppTheme::deviceIconTop());
    gradient.setColorAt(1, AppTheme::deviceIconBottom());
    painter.fillPath(roundedRect(rect, 10), gradient);
    Symbol{QStringLiteral("iphone"), 15, Weight::medium}.paint(painter, rect, AppTheme::onAccent());
}

Canvas *canvas(int side, Canvas::Paint paint) {
    auto *made = new Canvas(std::move(paint));
    made->setFixedSize(side, side);
    return made;
}

} // namespace

/// Of all rows Tab stops at one; Up and Down lead to the others.
class ShortcutRow : public PlainButton {
public:
    ShortcutRow(const StorageShortcut &shortcut, QWidget *parent)
        : PlainButton(parent), m_symbol{shortcut.systemImage, 13, Weight::semibold}, m_title(shortcut.title),
          m_loading(new Spinner(Spinner::Size::mini, QStringLiteral("Loading ") + shortcut.title, this)) {
        setObjectName(QStringLiteral("sidebar.shortcut.") + shortcut.title);
        setHelp(QStringLiteral("Browse ") + shortcut.title, QAccessible::RadioButton);
        setCheckable(true);
        setRingRadius(radius);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setLayout(rowOf(0, {BoxItem::room(), m_loading}, {horizontalPadding, 0, horizontalPadding, 0}));
    }

    void setLoading(bool loading) {
        if (loading == m_loading->isVisibleTo(this))
            return;
        m_loading->setVisible(loading);
        update(); // the texts make room for it
    }
    /// A few words at its end.
    void setDetail(const QString &detail) {
        if (detail == m_detail)
            return;
        m_detail = detail;
        setAccessibleTexts(this, accessibleName(), detail);
        update();
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {SidebarView::columnWidth(), titleStyle.lineHeight() + 2 * verticalPadding};
    }

protected:
    void keyPressEvent(QKeyEvent *event) override {
        const auto rows = parentWidget()->findChildren<QAbstractButton *>(Qt::FindDirectChildrenOnly);
        const int by = event->key() == Qt::Key_Down ? 1 : event->key() == Qt::Key_Up ? -1 : 0;
        if (by == 0)
            PlainButton::keyPressEvent(event);
        else if (QAbstractButton *next = rows.value(rows.indexOf(this) + by))
            next->setFocus(Qt::TabFocusReason);
    }
    void focusInEvent(QFocusEvent *event) override {
        PlainButton::focusInEvent(event);
        SidebarView::stopTabAt(this);
    }
    void paintContent(QPainter &painter) override {
        if (isChecked())
            paintCard(painter, rect(), radius, AppTheme::accentSoft(), Qt::transparent);
        const auto placed = [this](const QRectF &part) { return inReadingDirection(part, rect()); };
        const QRectF icon(horizontalPadding, 0, iconWidth, height());
        m_symbol.paint(painter, placed(icon), AppTheme::folderBlue());
        const int loading = m_loading->isVisible() ? m_loading->width() + gap : 0;
        const QRectF texts(QPointF(icon.right() + gap, 0),
                           QPointF(width() - horizontalPadding - loading, height()));
        const double titleWidth = titleStyle.width(m_title) + gap;
        paintText(painter, placed(texts), m_title, titleStyle, AppTheme::ink());
        paintText(painter, placed(texts.adjusted(titleWidth, 0, 0, 0)), m_detail, detailStyle,
                  AppTheme::inkTertiary(), Qt::AlignRight | Qt::AlignVCenter);
    }

private:
    static constexpr double radius = 8;
    static constexpr int horizontalPadding = 10;
    static constexpr int verticalPadding = 7;
    static constexpr int iconWidth = 18;
    static constexpr int gap = 8;
    static constexpr TextStyle titleStyle{13, Weight::medium};
    static constexpr TextStyle detailStyle{10.5, Weight::medium};

    Symbol m_symbol;
    QString m_title;
    QString m_detail;
    Spinner *m_loading;
};

SidebarView::SidebarView(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("sidebar"));
    describe(this, QAccessible::Grouping, QStringLiteral("Sidebar"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);

    auto *header = new TextLabel({10, Weight::bold, FontDesign::standard, 0.6}, AppTheme::inkTertiary());
    header->setText(QStringLiteral("ANDROID STORAGE"));
    setLayout(columnOf(0, {deviceCard(), columnOf(0, {header}, {14, 0, 14, 6}), {shortcutList(), 1}}));

    m_rendering.watch(state, &AppState::deviceChanged, &AppState::deviceStatusMessageChanged,
                      &AppState::isRefreshingDeviceChanged, &AppState::isLoadingAndroidChanged,
                      &AppState::selectedShortcutIDChanged);
    m_rendering.watch(&state->phones(), &PhoneWatch::phonesChanged);
    m_rendering.renderNow();
}

int SidebarView::columnWidth() {
    constexpr int designed = 240;
    // Its pictures and the room around its texts stay as they are.
    return designed + std::max(0, withTexts(designed) - designed) / 2;
}

QSize SidebarView::sizeHint() const {
    return {columnWidth(), QWidget::sizeHint().height()};
}

QSize SidebarView::minimumSizeHint() const {
    return {columnWidth(), QWidget::minimumSizeHint().height()};
}

QWidget *SidebarView::deviceCard() {
    const TextStyle caption{10.5, Weight::medium};
    const auto text = [](const QString &name, const TextStyle &style, const ThemeColor &color) {
        return named(name, new TextLabel(style, color));
    };
    m_title = text(QStringLiteral("sidebar.device.title"), {12.5, Weight::semibold, FontDesign::monospaced},
                   AppTheme::ink());
    m_picker = named(QStringLiteral("sidebar.device.picker"), new PhonePicker);
    connect(m_picker, &PhonePicker::phoneChosen, this, [this](const QString &serial) {
        m_rendering.request(); // it shows what was chosen only once that is so
        m_state->phones().show(serial, PhoneWatch::Spinner::shown);
    });
    m_refreshing = named(QStringLiteral("sidebar.device.refreshing"),
                         new Spinner(Spinner::Size::mini, QStringLiteral("Checking the device")));
    m_dot = named(QStringLiteral("sidebar.device.statusDot"),
                  canvas(7, [this](QPainter &painter, const QRectF &rect) {
                      painter.setRenderHint(QPainter::Antialiasing);
                      painter.fillPath(capsule(rect), QColor(statusColor()));
                  }));
    m_status = text(QStringLiteral("sidebar.device.status"), {11, Weight::semibold}, AppTheme::danger());
    m_refresh = named(QStringLiteral("sidebar.refresh"), new IconButton({24, 24}, IconButton::circle));
    m_refresh->setHelp(QStringLiteral("Refresh connected Android device"));
    m_refresh->setLook({.symbol = {QStringLiteral("arrow.clockwise"), 11, Weight::semibold},
                        .glyph = AppTheme::inkSecondary(),
                        .fill = AppTheme::canvas(),
                        .stroke = AppTheme::stroke()});
    connect(m_refresh, &QAbstractButton::clicked, this,
            [this] { m_state->refreshDevice(PhoneWatch::Spinner::shown); });
    m_message = text(QStringLiteral("sidebar.device.message"), caption, AppTheme::inkTertiary());
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_storage = named(QStringLiteral("sidebar.storage"), new QProgressBar);
    m_storage->setRange(0, storageSteps);
    m_storage->setFixedHeight(6);
    m_storage->setAccessibleName(QStringLiteral("Storage used"));
    m_storageText = text(QStringLiteral("sidebar.storage.text"), caption, AppTheme::inkTertiary());
    // The model's name yields first.
    m_storageText->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    m_model = text(QStringLiteral("sidebar.device.model"), caption, AppTheme::inkTertiary());

    auto *titles = columnOf(3, {m_title, m_picker, rowOf(5, {m_refreshing, m_dot, {m_status, 1}})});
    auto *header = rowOf(10, {canvas(36, &paintDeviceIcon), {titles, 1}, m_refresh});
    auto *storage = columnOf(5, {m_storage, rowOf(8, {m_storageText, BoxItem::room(), m_model})});
    auto *card = named(QStringLiteral("sidebar.device"), new Card(12));
    describe(card, QAccessible::Grouping, QStringLiteral("Android device"));
    card->setLayout(columnOf(10, {header, m_message, storage}, {12, 12, 12, 12}));
    auto *padded = new QWidget;
    padded->setLayout(columnOf(0, {card}, {12, 12, 12, 12}));
    return padded;
}

QWidget *SidebarView::shortcutList() {
    auto *scroll = named(QStringLiteral("sidebar.shortcuts"), new QScrollArea);
    scroll->setAccessibleName(QStringLiteral("Android storage"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->viewport()->setAutoFillBackground(false);

    auto *rows = new QWidget;
    m_rows = columnOf(2, {BoxItem::room()}, {8, 0, 8, 0});
    rows->setLayout(m_rows);
    for (const StorageShortcut &shortcut : m_state->shortcuts())
        addRow(shortcut);
    scroll->setWidget(rows);
    rows->setAutoFillBackground(false);
    return scroll;
}

void SidebarView::addRow(const StorageShortcut &shortcut) {
    auto *row = new ShortcutRow(shortcut, m_rows->parentWidget());
    connect(row, &QAbstractButton::clicked, this, [this, shortcut] {
        // The row is highlighted at once, whatever the phone takes.
        m_state->setSelectedShortcutID(shortcut.id);
        m_state->browseAndroid(shortcut.path);
    });
    m_shortcuts.append(row);
    m_rows->insertWidget(m_rows->count() - 1, row);
    row->show();
}

void SidebarView::stopTabAt(QWidget *row) {
    for (auto *other : row->parentWidget()->findChildren<QAbstractButton *>(Qt::FindDirectChildrenOnly))
        other->setFocusPolicy(other == row ? Qt::TabFocus : Qt::NoFocus);
}

void SidebarView::showShortcuts() {
    const QList<StorageShortcut> &fixed = m_state->shortcuts();
    const QList<StorageShortcut> cards = m_state->phones().cards();
    if (cards != m_cards) {
        while (m_shortcuts.size() > fixed.size()) {
            showWithHeir(m_shortcuts.last(), false, [this] { focusEntries(window()); });
            delete m_shortcuts.takeLast();
        }
        for (const StorageShortcut &card : cards)
            addRow(card);
        m_cards = cards;
    }
    for (qsizetype i = 0; i < m_shortcuts.size(); ++i) {
        const bool isCard = i >= fixed.size();
        const bool selected =
            m_state->selectedShortcutID() == (isCard ? cards.at(i - fixed.size()) : fixed.at(i)).id;
        m_shortcuts.at(i)->setChecked(selected);
        m_shortcuts.at(i)->setLoading(selected && m_state->isLoadingAndroid());
        if (!isCard)
            continue;
        const StorageCard &card = m_state->device().cards.at(i - fixed.size());
        m_shortcuts.at(i)->setDetail(
            card.totalBytes > 0
                ? QString(formatFileSize(card.totalBytes - card.usedBytes) % QStringLiteral(" free"))
                : QString());
    }
    const auto hasState = [this](bool (*is)(const ShortcutRow *)) {
        return std::find_if(m_shortcuts.begin(), m_shortcuts.end(), is);
    };
    if (hasState([](const ShortcutRow *row) { return row->hasFocus(); }) != m_shortcuts.end())
        return; // the keyboard is where it is
    const auto checked = hasState([](const ShortcutRow *row) { return row->isChecked(); });
    stopTabAt(checked == m_shortcuts.end() ? m_shortcuts.first() : *checked);
}

ThemeColor SidebarView::statusColor() const {
    return m_state->device().isConnected ? AppTheme::success() : AppTheme::danger();
}

void SidebarView::render() {
    const AndroidDevice &device = m_state->device();
    const bool connected = device.isConnected;
    const bool refreshing = m_state->isRefreshingDevice();

    m_title->setText(connected ? device.id : QStringLiteral("No device"));
    const QList<ListedPhone> &phones = m_state->phones().phones();
    m_picker->setPhones(phones, connected ? device.id : QString());
    m_title->setVisible(phones.size() < 2);
    showWithHeir(m_picker, phones.size() >= 2, [this] { focusEntries(window()); });
    m_refreshing->setVisible(refreshing);
    m_dot->setVisible(!refreshing);
    m_dot->update();
    m_status->setText(refreshing  ? QStringLiteral("Checking…")
                      : connected ? QStringLiteral("Connected")
                                  : QStringLiteral("Disconnected"));
    m_status->setColor(statusColor());
    // Not to a shortcut: the next stroke of the same key would leave the folder.
    enableWithHeir(m_refresh, !refreshing, [this] { focusEntries(window()); });

    const QString message = m_state->deviceStatusMessage().value_or(QString());
    m_message->setMaximumLines(textScale() > 1 ? 5 : 2); // of larger letters, a line holds fewer words
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

    showShortcuts();
}

void SidebarView::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) // texts appear in another size
        m_rendering.request();
}

void SidebarView::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), AppTheme::sidebar());
}

} // namespace vantrel
