#pragma once

#include "App/Sheets/Sheet.h"

namespace vantrel {

/// All of keyboardTable().
class KeyboardView : public Sheet {
    Q_OBJECT

public:
    explicit KeyboardView(QWidget *window);
};

} // namespace vantrel
