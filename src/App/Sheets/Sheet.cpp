#include "App/Sheets/Sheet.h"

#include "Kit/Shapes.h"
#include "Kit/WindowFrame.h"
#include "Theme/AppTheme.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int gapBelowTitleBar = 24;

/// A veil over the window that takes no part in anything.
class Dimming : public QWidget {
public:
    explicit Dimming(QWidget *window) : QWidget(window) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(window->rect());
        raise();
        show();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        // What lies outside the window's round corners is not the window's.
        const bool isRound = window()->testAttribute(Qt::WA_TranslucentBackground) &&
                             !window()->isMaximized() && !window()->isFullScreen();
        painter.fillPath(roundedTop(rect(), isRound ? windowCornerRadius : 0), QColor(AppTheme::dimming()));
    }
};

} // namespace

Sheet::Sheet(const QString &name, int width, QWidget *window)
    : QDialog(window, Qt::Dialog | Qt::FramelessWindowHint), m_content(new QVBoxLayout(this)) {
    setWindowTitle(name);
    setAccessibleName(name);
    setWindowModality(Qt::WindowModal);
    m_content->setSpacing(0);
    m_content->setContentsMargins(0, 0, 0, 0);
    m_content->setSizeConstraint(QLayout::SetNoConstraint);
    setFixedWidth(width);
    if (desktopBlendsWindows()) {
        setAttribute(Qt::WA_TranslucentBackground);
        m_hasRoundCorners = true;
    }
}

Sheet::~Sheet() {
    delete m_dimming;
}

QPushButton *Sheet::makeButton(const QString &title, const QString &objectName) {
    auto *button = new QPushButton(title, this);
    button->setObjectName(objectName);
    button->setAutoDefault(false);        // or Return would press the one that has the keyboard
    button->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it was
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return button;
}

void Sheet::showEvent(QShowEvent *event) {
    setFixedHeight(m_content->hasHeightForWidth() ? m_content->totalHeightForWidth(width())
                                                  : m_content->totalSizeHint().height());
    if (QWidget *window = parentWidget()) {
        if (!m_dimming)
            m_dimming = new Dimming(window->window());
        window->window()->installEventFilter(this);
        place();
    }
    setFocus(Qt::OtherFocusReason); // no control is preselected; Tab begins at the first one
    QDialog::showEvent(event);
}

void Sheet::hideEvent(QHideEvent *event) {
    if (QWidget *window = parentWidget())
        window->window()->removeEventFilter(this);
    delete m_dimming;
    QDialog::hideEvent(event);
}

bool Sheet::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize)
        place();
    return QDialog::eventFilter(watched, event);
}

void Sheet::place() {
    const QWidget *window = parentWidget()->window();
    if (m_dimming)
        m_dimming->setGeometry(window->rect());
    const QPoint below((window->width() - width()) / 2, titleBarHeight + gapBelowTitleBar);
    move(window->mapToGlobal(below));
}

void Sheet::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintCard(painter, rect(), m_hasRoundCorners ? windowCornerRadius : 0, AppTheme::surface(),
              AppTheme::paneStroke());
}

} // namespace vantrel
