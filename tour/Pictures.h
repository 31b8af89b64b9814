#pragma once

#include <QString>

class QWidget;

namespace vantrel::tour {

/// Takes pictures of a window: in both colour schemes, for screens of single and of double density.
class Pictures {
public:
    /// The folder is emptied of older pictures, and made where it is missing.
    explicit Pictures(const QString &folder);

    /// Saves NAME-light.png, NAME-light@2x.png, and the same in dark; the window is left as it was.
    void take(QWidget &window, const QString &name) const;

private:
    QString m_folder;
};

} // namespace vantrel::tour
