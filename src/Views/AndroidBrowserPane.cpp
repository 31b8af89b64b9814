#include "Views/AndroidBrowserPane.h"

namespace vantrel {

AndroidBrowserPane::AndroidBrowserPane(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("androidPane"));
}

void AndroidBrowserPane::render() {}

} // namespace vantrel
