#pragma once

class QModelIndex;

namespace vantrel {

class QueueListView;

/// Makes every QueueListView a list for assistive technology. Its items are named by their files and
/// described by their progress; in each lie a progress bar with its value and the remove button. To be called
/// before the first view is shown.
void makeQueueAccessible();

/// Tells assistive technology that a row's progress changed, if it has ever asked for that row.
void announceProgress(QueueListView *view, const QModelIndex &row);

/// Tells assistive technology on which remove button the keyboard is.
void announceFocus(QueueListView *view);

/// Tells assistive technology that rows are about to go.
void announceRemoval(QueueListView *view, int first, int last);

} // namespace vantrel
