#pragma once

#include "App/Sheets/Sheet.h"

namespace vantrel {

class TextLabel;

/// Says something and offers what can be done about it.
class MessageSheet : public Sheet {
    Q_OBJECT

public:
    struct Message {
        QString heading;
        QString detail;
        QString rejectLabel;
        QString acceptLabel = {}; ///< of the default button; empty: there is only the other one
    };

    /// `name` is the sheet's for assistive technology; its parts' object names begin with `objectName`.
    MessageSheet(const QString &name, const QString &objectName, const Message &message, QWidget *window);

    /// Says something else in as many lines.
    void setTexts(const QString &heading, const QString &detail);

private:
    TextLabel *m_heading;
    TextLabel *m_detail;
};

} // namespace vantrel
