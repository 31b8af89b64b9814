#pragma once

#include "Records/FileItem.h"
#include "Records/Pane.h"

#include <QList>
#include <QMimeData>
#include <QPixmap>

class QWidget;

namespace vantrel {

/// Entries of a pane that are being dragged. Those of the computer are files to other programs, too, which
/// may copy them.
class DraggedEntries : public QMimeData {
    Q_OBJECT

public:
    /// `serial` is that of the phone which is shown, and which entries of the phone's side are on.
    DraggedEntries(BrowserSide side, const QString &serial, const QList<FileItem> &items);

    [[nodiscard]] BrowserSide side() const { return m_side; }
    [[nodiscard]] const QString &serial() const { return m_serial; }
    [[nodiscard]] const QList<FileItem> &items() const { return m_items; }

private:
    BrowserSide m_side;
    QString m_serial;
    QList<FileItem> m_items;
};

/// How many entries a drag brings into a folder of that side; none when it cannot take them: the phone's own,
/// those that are in that folder, a folder into itself.
[[nodiscard]] qsizetype draggedCount(const QMimeData &data, BrowserSide to, const QString &folder);

/// The paths of what is dragged from this computer, by this program or another one.
[[nodiscard]] QStringList draggedPaths(const QMimeData &data);

/// What hangs on the pointer: a card with the first entry's symbol and name, or how many there are, for a
/// screen with so many pixels to a layout pixel.
[[nodiscard]] QPixmap dragPicture(const QList<FileItem> &items, double pixelRatio);

/// Drags the entries, which are deleted afterwards, away from the widget, with a picture that says what they
/// are; returns when they were dropped.
void dragEntries(QWidget *from, DraggedEntries *entries);

} // namespace vantrel
