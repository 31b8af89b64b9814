#include "Views/TransferButtons.h"

#include "Kit/Boxes.h"
#include "Kit/Focus.h"
#include "Kit/IconButton.h"
#include "MacFiles/ThisComputer.h"
#include "State/AppState.h"
#include "Views/FileItemsView.h"

#include <QEvent>

namespace vantrel {

namespace {

void setEnabledLook(IconButton *button, const QString &symbol, bool enabled, const QWidget *source) {
    enableWithHeir(button, enabled, [source] { focusEntries(source); });
    button->setLook({.symbol = {symbol, 13, Weight::bold},
                     .glyph = enabled ? AppTheme::onAccent() : AppTheme::inkTertiary(),
                     .fill = enabled ? AppTheme::accent() : AppTheme::surface(),
                     .stroke = AppTheme::strokeStrong(),
                     .strokeWidth = enabled ? 0.0 : 1.0});
}

} // namespace

TransferButtons::TransferButtons(AppState *state, QWidget *android, QWidget *mac)
    : m_state(state), m_android(android), m_mac(mac),
      m_toMac(named(QStringLiteral("transferToMac"), new IconButton({34, 34}, 8))),
      m_toAndroid(named(QStringLiteral("transferToAndroid"), new IconButton({34, 34}, 8))) {
    m_toMac->setHelp(QStringLiteral("Transfer selected Android items to ") + thisComputer());
    m_toAndroid->setHelp(QStringLiteral("Transfer selected %1 items to Android").arg(thisComputer()));
    setLayout(columnOf(10, {BoxItem::room(), m_toMac, m_toAndroid, BoxItem::room()}));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);

    connect(m_toMac, &IconButton::clicked, state, &AppState::transferAndroidToMac);
    connect(m_toAndroid, &IconButton::clicked, state, &AppState::transferMacToAndroid);

    m_rendering.watch(state, &AppState::deviceChanged, &AppState::androidSelectedIDsChanged,
                      &AppState::macSelectedIDsChanged);
    m_rendering.renderNow();
}

void TransferButtons::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        m_rendering.request();
}

void TransferButtons::render() {
    const bool connected = m_state->device().isConnected;
    setEnabledLook(m_toMac, forwardChevron(), connected && !m_state->androidSelectedIDs().isEmpty(),
                   m_android);
    setEnabledLook(m_toAndroid, backChevron(), connected && !m_state->macSelectedIDs().isEmpty(), m_mac);
}

} // namespace vantrel
