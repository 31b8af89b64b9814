#include "Views/TransferButtons.h"

#include "Kit/IconButton.h"
#include "MacFiles/ThisComputer.h"
#include "State/AppState.h"

#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr QSize buttonSize(34, 34);
constexpr double buttonRadius = 8;

IconButton *transferButton(const QString &objectName, const QString &help) {
    auto *button = new IconButton(buttonSize, buttonRadius);
    button->setObjectName(objectName);
    button->setHelp(help);
    return button;
}

void setEnabledLook(IconButton *button, const QString &symbol, bool enabled) {
    button->setEnabled(enabled);
    button->setLook({.symbol = {symbol, 13, Weight::bold},
                     .glyph = enabled ? AppTheme::onAccent() : AppTheme::inkTertiary(),
                     .fill = enabled ? AppTheme::accent() : AppTheme::surface(),
                     .stroke = AppTheme::strokeStrong(),
                     .strokeWidth = enabled ? 0.0 : 1.0});
}

} // namespace

TransferButtons::TransferButtons(AppState *state, QWidget *parent)
    : QWidget(parent), m_state(state),
      m_toMac(transferButton(QStringLiteral("transferToMac"),
                             QStringLiteral("Transfer selected Android items to ") + thisComputer())),
      m_toAndroid(
          transferButton(QStringLiteral("transferToAndroid"),
                         QStringLiteral("Transfer selected %1 items to Android").arg(thisComputer()))) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(10);
    column->addStretch();
    column->addWidget(m_toMac);
    column->addWidget(m_toAndroid);
    column->addStretch();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);

    connect(m_toMac, &IconButton::clicked, state, &AppState::transferAndroidToMac);
    connect(m_toAndroid, &IconButton::clicked, state, &AppState::transferMacToAndroid);

    m_rendering.watch(state, &AppState::deviceChanged, &AppState::androidSelectedIDsChanged,
                      &AppState::macSelectedIDsChanged);
    m_rendering.renderNow();
}

void TransferButtons::render() {
    const bool connected = m_state->device().isConnected;
    setEnabledLook(m_toMac, QStringLiteral("chevron.right"),
                   connected && !m_state->androidSelectedIDs().isEmpty());
    setEnabledLook(m_toAndroid, QStringLiteral("chevron.left"),
                   connected && !m_state->macSelectedIDs().isEmpty());
}

} // namespace vantrel
