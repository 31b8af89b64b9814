#pragma once

#include "App/Sheets/Sheet.h"

#include <QHash>

#include <memory>

namespace vantrel {

class Desktop;
class Details;
class ReadOnlyText;
class TextLabel;

/// What is known of some entries, as it is found out. Every text can be selected, and all of them copied.
class DetailsView : public Sheet {
    Q_OBJECT

public:
    /// The desktop must outlive the view.
    DetailsView(QWidget *window, std::unique_ptr<Details> details, Desktop &desktop);
    ~DetailsView() override;

private:
    struct Row {
        TextLabel *label;
        ReadOnlyText *value;
    };

    void render();

    std::unique_ptr<Details> m_details;
    QHash<QString, Row> m_rows; ///< by their labels
    TextLabel *m_problem;
};

} // namespace vantrel
