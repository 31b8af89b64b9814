#pragma once

#include "State/AppState.h"

namespace vantrel {

/// Assigns a property and tells its observers, unless the value is the one it holds. For the model's own
/// files.
template <class T>
void AppState::assign(T &property, std::type_identity_t<T> value, void (AppState::*changed)()) {
    if (property == value)
        return;
    property = std::move(value);
    Q_EMIT(this->*changed)();
}

} // namespace vantrel
