#include "Views/SelectAllBox.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QPainter>

namespace vantrel {

namespace {

Symbol symbolOf(Qt::CheckState state) {
    const QString name = state == Qt::Checked            ? QStringLiteral("checkmark.square.fill")
                         : state == Qt::PartiallyChecked ? QStringLiteral("minus.square.fill")
                                                         : QStringLiteral("square");
    return {name, 13, Weight::medium};
}

} // namespace

SelectAllBox::SelectAllBox(QWidget *parent) : QCheckBox(parent) {
    setTristate(true);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(SelectAllBox::sizeHint());
    setSelection(PaneSelectAllState::none);
}

QString SelectAllBox::title(PaneSelectAllState selection) {
    return selection == PaneSelectAllState::all ? QStringLiteral("Deselect all")
                                                : QStringLiteral("Select all");
}

void SelectAllBox::setSelection(PaneSelectAllState selection) {
    setCheckState(selection == PaneSelectAllState::all       ? Qt::Checked
                  : selection == PaneSelectAllState::partial ? Qt::PartiallyChecked
                                                             : Qt::Unchecked);
    setToolTip(plainToolTip(title(selection)));
    setAccessibleName(title(selection));
}

QSize SelectAllBox::sizeHint() const {
    return symbolOf(Qt::Unchecked).naturalSize().toSize();
}

void SelectAllBox::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const ThemeColor color = !isEnabled()                    ? AppTheme::inkTertiary().withOpacity(0.45)
                             : checkState() == Qt::Unchecked ? AppTheme::inkTertiary()
                                                             : AppTheme::accent();
    symbolOf(checkState()).paint(painter, rect(), color);
    if (hasFocus())
        paintFocusRing(painter, rect(), 4);
}

} // namespace vantrel
