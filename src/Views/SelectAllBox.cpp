#include "Views/SelectAllBox.h"

namespace vantrel {

namespace {

Symbol symbolOf(PaneSelectAllState selection) {
    const QString name = selection == PaneSelectAllState::all       ? QStringLiteral("checkmark.square.fill")
                         : selection == PaneSelectAllState::partial ? QStringLiteral("minus.square.fill")
                                                                    : QStringLiteral("square");
    return {name, 13, Weight::medium};
}

} // namespace

SelectAllBox::SelectAllBox(QWidget *parent) : PlainButton(parent) {
    setCheckable(true);
    setRingRadius(4);
    setFixedSize(SelectAllBox::sizeHint());
    setHelp(title(m_selection), QAccessible::CheckBox);
}

QString SelectAllBox::title(PaneSelectAllState selection) {
    return selection == PaneSelectAllState::all ? QStringLiteral("Deselect all")
                                                : QStringLiteral("Select all");
}

void SelectAllBox::setSelection(PaneSelectAllState selection) {
    if (std::exchange(m_selection, selection) == selection)
        return;
    setHelp(title(selection), QAccessible::CheckBox);
    const bool isOn = selection != PaneSelectAllState::none;
    if (isOn != isChecked()) {
        setChecked(isOn);
    } else { // from some to all or back, which the toolkit does not tell assistive technology
        QAccessible::State changed;
        changed.checked = changed.checkStateMixed = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
    }
    update();
}

Qt::CheckState SelectAllBox::checkState() const {
    return m_selection == PaneSelectAllState::partial ? Qt::PartiallyChecked : PlainButton::checkState();
}

QSize SelectAllBox::sizeHint() const {
    return symbolOf(PaneSelectAllState::none).naturalSize().toSize();
}

void SelectAllBox::paintContent(QPainter &painter) {
    const ThemeColor color = !isEnabled() ? AppTheme::inkTertiary().withOpacity(0.45)
                             : m_selection == PaneSelectAllState::none ? AppTheme::inkTertiary()
                                                                       : AppTheme::accent();
    symbolOf(m_selection).paint(painter, rect(), color);
}

} // namespace vantrel
