#pragma once

#include "Records/FileItem.h"
#include "Records/Pane.h"

#include <QList>
#include <QMimeData>

class QWidget;

namespace vantrel {

/// Entries of a pane that are being dragged. Those of the computer are files to other programs, too, which
/// may copy them.
class DraggedEntries : public QMimeData {
    Q_OBJECT

public:
    DraggedEntries(BrowserSide side, const QList<FileItem> &items);

    [[nodiscard]] BrowserSide side() const { return m_side; }
    [[nodiscard]] const QList<FileItem> &items() const { return m_items; }

private:
    BrowserSide m_side;
    QList<FileItem> m_items;
};

/// How many entries a drag brings to a pane of that side; none when it cannot take them, as its own.
[[nodiscard]] qsizetype draggedCount(const QMimeData &data, BrowserSide to);

/// The local paths of what comes from another program.
[[nodiscard]] QStringList draggedPaths(const QMimeData &data);

/// Drags the entries away from the widget, with a picture that says what they are; returns when they were
/// dropped.
void dragEntries(QWidget *from, BrowserSide side, const QList<FileItem> &items);

} // namespace vantrel
