#pragma once

#include "Views/FileEntry.h"

#include <QAbstractScrollArea>
#include <QSet>

namespace vantrel {

/// What a list or a grid shows. Copies share the lists, whatever their length.
struct FileItemsContents {
    QList<FileItem> items;
    QSet<QUuid> selectedIDs;
    bool showsLocation = false;
    bool showsMacContextMenu = false;
    bool showsOpenContextMenu = false;

    [[nodiscard]] FileEntry entry(qsizetype index) const;
};

/// The scrolled entries of a pane; FileListView and FileGridView lay them out. Where an entry lies is
/// arithmetic and only what is visible is ever looked at, so 100,000 entries cost what one screen of them
/// costs.
///
/// The mouse selects, toggles and opens. The keyboard has no part in the selection of those who work with the
/// mouse: the arrow keys scroll. Who arrives with Tab gets a focus ring on one entry, which the arrow keys
/// move and whose mark Space toggles; so assistive technology has a focus to follow.
class FileItemsView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// Shows other contents: exactly the visible entries that look different are repainted.
    void setContents(const FileItemsContents &contents);
    [[nodiscard]] const FileItemsContents &contents() const { return m_contents; }
    void scrollToTop();

    [[nodiscard]] qsizetype count() const { return m_contents.items.size(); }
    /// Where an entry lies, in coordinates of the viewport; it may be outside.
    [[nodiscard]] QRect entryRect(qsizetype index) const;
    /// The entry at a point of the viewport, or -1.
    [[nodiscard]] qsizetype indexAt(const QPoint &point) const;
    /// The entry that has the focus ring, or -1.
    [[nodiscard]] qsizetype focusedIndex() const;
    void setFocusedIndex(qsizetype index);
    /// Asks for an entry's context menu as a secondary click on it does.
    void requestContextMenu(qsizetype index);

Q_SIGNALS:
    void toggled(const FileItem &item);
    void selected(const FileItem &item);
    void opened(const FileItem &item);
    void contextMenuRequested(const FileEntry &entry, const QPoint &globalPosition);

protected:
    explicit FileItemsView(QWidget *parent);

    /// First and last index, whether or not there are that many entries.
    struct Range {
        qsizetype first;
        qsizetype last;
    };

    // The layout, in coordinates of the whole content.
    [[nodiscard]] virtual int contentHeight() const = 0;
    [[nodiscard]] virtual int columns() const = 0;
    /// From the top of one line of entries to the top of the next.
    [[nodiscard]] virtual int pitch() const = 0;
    [[nodiscard]] virtual QRect rectOf(qsizetype index) const = 0;
    /// The entries that reach into a stretch of the content.
    [[nodiscard]] virtual Range entriesBetween(int top, int bottom) const = 0;

    // The look.
    [[nodiscard]] virtual bool looksSame(const FileEntry &a, const FileEntry &b) const = 0;
    [[nodiscard]] virtual FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                                 const QPoint &point) const = 0;
    /// Whether the name is too long to be shown in full.
    [[nodiscard]] virtual bool cutsName(const FileEntry &entry, const QRect &rect) const = 0;
    virtual void paintEntry(QPainter &painter, const FileEntry &entry, const QRect &rect) const = 0;
    [[nodiscard]] virtual double focusRadius() const = 0;

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    struct Target {
        QUuid id;
        FileEntry::Part part;
        friend bool operator==(const Target &, const Target &) = default;
    };

    void fitScrollBar();
    void repaintChanged(const FileItemsContents &before);
    void updateEntry(qsizetype index);
    void ensureVisible(qsizetype index);
    [[nodiscard]] Range visibleEntries() const;
    [[nodiscard]] std::optional<Target> targetAt(const QPoint &point) const;
    void click(FileEntry::Part part, const FileItem &item);
    void announceFocus();
    void hideFocus();

    FileItemsContents m_contents;
    std::optional<Target> m_pressed;
    std::optional<Target> m_clicked; ///< the last one, which a second click may make a double click
    qsizetype m_current = 0;
    bool m_showsFocus = false;
};

} // namespace vantrel
