#include "Kit/ToolTips.h"

#include "Kit/Accessibility.h"
#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

constexpr TextStyle textStyle{.size = 11.5, .weight = Weight::medium};
constexpr int paddingX = 8;
constexpr int paddingY = 5;
constexpr int shadow = 6; // around the card
constexpr int gap = 3;    // between a control and its tip
constexpr double radius = 6;
constexpr int small = 64; // a button: its tip is centred on it, that of a row on the mouse
constexpr int mostLines = 26;

/// What stands in the card, each line no wider than the room.
QStringList linesOf(const QString &text, double room) {
    QStringList lines;
    for (const QString &paragraph : text.split(QLatin1Char('\n'))) {
        const QStringList wrapped = wrappedLines(paragraph, textStyle, room, mostLines - int(lines.size()));
        lines += wrapped.isEmpty() && lines.size() < mostLines ? QStringList(QString()) : wrapped;
    }
    return lines;
}

/// The card with its text. It takes no part in anything.
class ToolTipView : public QWidget {
public:
    ToolTipView(const QString &text, QWidget *window) : QWidget(window), m_text(text) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        describe(this, QAccessible::ToolTip, text);
        m_lines = linesOf(text, window->width() / 2.0 - 2 * paddingX);
        double width = 0;
        for (const QString &line : m_lines)
            width = std::max(width, textStyle.width(line));
        const QSize card(qCeil(width) + 1 + 2 * paddingX,
                         int(m_lines.size()) * textStyle.lineHeight() + 2 * paddingY);
        resize(card.grownBy({shadow, shadow, shadow, shadow}));
    }

    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] QRect card() const { return rect().adjusted(shadow, shadow, -shadow, -shadow); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        paintShadow(painter, card(), radius, shadow);
        paintCard(painter, card(), radius, AppTheme::surface(), AppTheme::paneStroke());
        QRect line = card().adjusted(paddingX, paddingY, -paddingX, 0);
        line.setHeight(textStyle.lineHeight());
        for (const QString &words : m_lines) {
            paintText(painter, line, words, textStyle, AppTheme::ink());
            line.translate(0, line.height());
        }
    }

private:
    QString m_text;
    QStringList m_lines;
};

QList<QRect> controlsBeside(const QWidget &control) {
    QList<QRect> rects;
    const QWidget *window = control.window();
    for (const QWidget *other : window->findChildren<QWidget *>()) {
        const bool isControl = qobject_cast<const QAbstractButton *>(other) ||
                               qobject_cast<const QLineEdit *>(other) ||
                               qobject_cast<const QComboBox *>(other);
        if (isControl && other != &control && other->isVisible())
            rects.append(QRect(other->mapTo(window, QPoint()), other->size()));
    }
    return rects;
}

ToolTips *installed = nullptr;

} // namespace

QPoint placeToolTip(QSize tip, const QRect &part, int x, const QRect &window, const QList<QRect> &controls) {
    const auto inside = [](int start, int length, int low, int room) {
        return std::clamp(start, low, std::max(low, low + room - length));
    };
    const int left = inside(x - tip.width() / 2, tip.width(), window.x(), window.width());
    const int top = inside(part.center().y() - tip.height() / 2, tip.height(), window.y(), window.height());
    const std::array places{
        QPoint(left, part.bottom() + 1 + gap), QPoint(left, part.top() - gap - tip.height()),
        QPoint(part.right() + 1 + gap, top), QPoint(part.left() - gap - tip.width(), top)};
    const auto covered = [&](QPoint place) {
        const QRect rect(place, tip);
        if (!window.contains(rect))
            return controls.size() + 1;
        return qsizetype(
            std::ranges::count_if(controls, [&](const QRect &control) { return control.intersects(rect); }));
    };
    const QPoint best = *std::ranges::min_element(places, {}, covered);
    return {inside(best.x(), tip.width(), window.x(), window.width()),
            inside(best.y(), tip.height(), window.y(), window.height())};
}

void ToolTips::install(QApplication &application) {
    delete installed;
    installed = new ToolTips(&application);
    application.installEventFilter(installed);
}

ToolTips::ToolTips(QObject *parent) : QObject(parent) {
    m_end.setSingleShot(true);
    m_end.callOnTimeout(this, &ToolTips::hide);
    m_question.setSingleShot(true);
    m_question.callOnTimeout(this, &ToolTips::askAgain);
    connect(this, &QObject::destroyed, [] { installed = nullptr; });
}

void ToolTips::show(const QString &text, QWidget *control, const QRect &part) {
    if (installed)
        installed->present(text, control, part);
}

QString ToolTips::text() {
    return installed && installed->m_view ? static_cast<ToolTipView *>(installed->m_view.data())->text()
                                          : QString();
}

void ToolTips::present(const QString &text, QWidget *control, const QRect &part) {
    m_isConfirmed = !text.isEmpty();
    if (control == m_pressed) {
        if (part.contains(m_pressedAt) && (m_mouse - m_pressedAt).manhattanLength() <= small)
            return hide();
        m_pressed.clear();
    }
    if (m_isConfirmed && m_control == control && m_part == part && ToolTips::text() == text)
        return;
    hide();
    if (text.isEmpty())
        return;
    m_control = control;
    m_part = part;
    QWidget *window = control->window();
    auto *view = new ToolTipView(text, window);
    m_view = view;
    const QPoint origin = control->mapTo(window, QPoint());
    const int x = origin.x() + (part.width() <= small ? part.center().x() : m_mouse.x());
    view->move(placeToolTip(view->card().size(), part.translated(origin), x,
                            window->rect().adjusted(shadow, shadow, -shadow, -shadow),
                            controlsBeside(*control)) -
               QPoint(shadow, shadow));
    view->show();
    view->raise();
    constexpr int readingTime = 10'000; // milliseconds, and for each letter of a long text
    constexpr int perLetter = 40;
    m_end.start(readingTime + perLetter * int(text.size()));
}

/// The widget that is pressed hears of it first, and those around it when it has no use for it.
void ToolTips::notePress(QWidget *widget, QPoint place) {
    if (m_pressed && widget->isAncestorOf(m_pressed))
        return;
    m_pressed = widget;
    m_pressedAt = place;
}

void ToolTips::hide() {
    delete m_view;
    m_control.clear();
    m_end.stop();
    m_question.stop();
}

void ToolTips::askAgain() {
    if (!m_control)
        return;
    m_isConfirmed = false;
    QHelpEvent question(QEvent::ToolTip, m_mouse, m_control->mapToGlobal(m_mouse));
    QCoreApplication::sendEvent(m_control, &question);
    if (!m_isConfirmed)
        hide();
}

bool ToolTips::help(QWidget &widget, const QHelpEvent &event) {
    m_mouse = event.pos();
    if (!widget.rect().contains(widget.mapFromGlobal(event.globalPos())))
        return true; // it has moved from under the mouse
    if (widget.toolTip().isEmpty())
        return false;
    present(widget.toolTip(), &widget, widget.rect());
    return true;
}

bool ToolTips::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::ToolTip && watched->isWidgetType())
        return help(*static_cast<QWidget *>(watched), *static_cast<QHelpEvent *>(event));
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType())
        notePress(static_cast<QWidget *>(watched), static_cast<QMouseEvent *>(event)->position().toPoint());
    else if (event->type() == QEvent::Leave && watched == m_pressed)
        m_pressed.clear();
    if (!m_view)
        return false;
    switch (event->type()) {
    case QEvent::MouseMove:
        if (watched == m_control) {
            m_mouse = static_cast<QMouseEvent *>(event)->position().toPoint();
            if (m_part.contains(m_mouse))
                m_question.start(0);
            else
                hide();
        }
        break;
    case QEvent::Leave:
    case QEvent::Hide:
    case QEvent::Destroy:
        if (watched == m_control)
            hide();
        break;
    case QEvent::Paint:
        if (watched == m_control)
            m_question.start(0);
        break;
    case QEvent::Resize:
        if (watched == m_control->window())
            hide();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::WindowDeactivate:
        hide();
        break;
    default:
        break;
    }
    return false;
}

} // namespace vantrel
