#include "Views/ScopePicker.h"

#include <algorithm>

namespace vantrel {

ScopePicker::ScopePicker(QWidget *parent)
    : PopUpButton(QStringLiteral("Scope"), {11.5, Weight::medium}, parent) {
    for (const AndroidSearchScope scope : allAndroidSearchScopes)
        addItem(displayTitle(scope));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QComboBox::activated, this,
            [this](int index) { Q_EMIT scopeChosen(allAndroidSearchScopes.at(size_t(index))); });
}

void ScopePicker::setScope(AndroidSearchScope scope) {
    const auto *place = std::find(allAndroidSearchScopes.begin(), allAndroidSearchScopes.end(), scope);
    setCurrentIndex(int(place - allAndroidSearchScopes.begin()));
}

} // namespace vantrel
