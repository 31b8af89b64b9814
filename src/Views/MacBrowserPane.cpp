#include "Views/MacBrowserPane.h"

namespace vantrel {

MacBrowserPane::MacBrowserPane(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("macPane"));
}

void MacBrowserPane::render() {}

} // namespace vantrel
