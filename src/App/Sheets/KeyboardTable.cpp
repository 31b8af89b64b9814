#include "App/Sheets/KeyboardTable.h"

#include <QGuiApplication>
#include <QStringList>

namespace vantrel {

QString KeyboardEntry::title() const {
    if (!keys.isEmpty())
        return keys;
    QStringList titles;
    for (const QKeySequence &sequence : sequences)
        titles.append(sequence.toString(QKeySequence::NativeText));
    return titles.join(QStringLiteral(" or "));
}

namespace {

/// `toComputer` and `toPhone` are the arrow keys that point from one pane to the other.
QList<KeyboardEntry> tableWith(Qt::Key toComputer, Qt::Key toPhone) {
    using enum WindowCommand;
    static const QString inList = QStringLiteral("In a list");
    static const QString inPane = QStringLiteral("In a pane");
    static const QString inWindow = QStringLiteral("In the window");
    static const QString arrows = QStringLiteral("Arrow keys");
    return {
        {inList, arrows + QStringLiteral(", Home, End, Page Up, Page Down"), QStringLiteral("Move")},
        {inList, QStringLiteral("Letters"), QStringLiteral("Go to the next name that begins with them")},
        {inList, QStringLiteral("Return or double-click"), QStringLiteral("Open the folder or the file")},
        {inList, QStringLiteral("Space or Control+click"), QStringLiteral("Select, or no longer")},
        {inList, QStringLiteral("Shift with a movement or a click"), QStringLiteral("Select a range")},
        {inList, QKeySequence(QKeySequence::SelectAll).toString(QKeySequence::NativeText),
         QStringLiteral("Select all")},
        {inList, QStringLiteral("Escape"), QStringLiteral("Stop opening a file, or select nothing")},
        {inList, QStringLiteral("Menu key or Shift+F10"),
         QStringLiteral("Show what can be done with the entry")},
        {inList,
         {},
         QStringLiteral("Show all that is known of the entry"),
         {QKeySequence(Qt::ALT | Qt::Key_Return), QKeySequence(Qt::ALT | Qt::Key_Enter)},
         showDetails},
        {inPane,
         {},
         QStringLiteral("Go to the folder around this one"),
         {QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::ALT | Qt::Key_Up)},
         goUp},
        {inPane, {}, QStringLiteral("Type a folder’s path"), {QKeySequence(Qt::CTRL | Qt::Key_L)}, editPath},
        {inPane, {}, QStringLiteral("Read the folder again"), {QKeySequence(Qt::Key_F5)}, refresh},
        {inPane,
         {},
         QStringLiteral("Make the grid’s tiles larger"),
         {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)},
         enlargeTiles},
        {inPane,
         {},
         QStringLiteral("Make them smaller"),
         {QKeySequence(Qt::CTRL | Qt::Key_Minus)},
         shrinkTiles},
        {inPane,
         {},
         QStringLiteral("Give them their first size"),
         {QKeySequence(Qt::CTRL | Qt::Key_0)},
         resetTiles},
        {inPane, {}, QStringLiteral("Go to the other pane"), {QKeySequence(Qt::Key_F6)}, switchPanes},
        {inWindow,
         {},
         QStringLiteral("Copy what is selected on the phone to this computer"),
         {QKeySequence(Qt::CTRL | toComputer)},
         copyToComputer},
        {inWindow,
         {},
         QStringLiteral("Copy what is selected here to the phone"),
         {QKeySequence(Qt::CTRL | toPhone)},
         copyToPhone},
        {inWindow, {}, QStringLiteral("Search the phone"), {QKeySequence(Qt::CTRL | Qt::Key_F)}, search},
        {inWindow, {}, QStringLiteral("Open the menu"), {QKeySequence(Qt::Key_F10)}, openMenu},
        {inWindow, {}, QStringLiteral("Fill the screen"), {QKeySequence(Qt::Key_F11)}, toggleFullScreen},
        {inWindow, {}, QStringLiteral("Show these keys"), {QKeySequence(Qt::Key_F1)}, showKeyboard},
        {inWindow, {}, QStringLiteral("Quit"), {QKeySequence(Qt::CTRL | Qt::Key_Q)}},
    };
}

} // namespace

const QList<KeyboardEntry> &keyboardTable() {
    // The phone's pane comes first, where lines begin.
    static const QList<KeyboardEntry> fromTheLeft = tableWith(Qt::Key_Right, Qt::Key_Left);
    static const QList<KeyboardEntry> fromTheRight = tableWith(Qt::Key_Left, Qt::Key_Right);
    return QGuiApplication::isRightToLeft() ? fromTheRight : fromTheLeft;
}

} // namespace vantrel
