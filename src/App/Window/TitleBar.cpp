#include "App/Window/TitleBar.h"

#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/TextLabel.h"
#include "Kit/WindowFrame.h"
#include "Theme/AppTheme.h"

#include <QHBoxLayout>
#include <QHash>
#include <QPainter>
#include <QPainterPath>

namespace vantrel {

namespace {

constexpr int buttonSize = 24; // what can be hit; the disc in it is smaller
constexpr double discSize = 16;

/// A small disc with the sign of what it does to the window.
class WindowButtonView : public PlainButton {
public:
    explicit WindowButtonView(WindowButton button, QWidget *parent) : PlainButton(parent), m_button(button) {
        setFixedSize(buttonSize, buttonSize);
        setRingRadius(buttonSize / 2.0);
        setFocusPolicy(Qt::NoFocus); // the desktop's own keys close and minimise windows
        setAttribute(Qt::WA_Hover);
        constexpr const char *texts[][2] = {
            {"window.close", "Close"}, {"window.minimise", "Minimize"}, {"window.zoom", "Zoom"}};
        const auto &[name, help] = texts[int(button)];
        setObjectName(QLatin1String(name));
        setHelp(QLatin1String(help));
    }

    void setActive(bool active) {
        m_active = active;
        update();
    }

protected:
    void paintContent(QPainter &painter) override {
        const bool lit = underMouse() || isDown();
        QColor disc =
            lit ? AppTheme::inkTertiary().withOpacity(isDown() ? 0.6 : 0.38) : AppTheme::strokeStrong();
        QColor sign = lit ? AppTheme::ink() : m_active ? AppTheme::inkSecondary() : AppTheme::inkTertiary();
        if (lit && m_button == WindowButton::close) {
            disc = isDown() ? QColor(AppTheme::danger()).darker(115) : QColor(AppTheme::danger());
            sign = AppTheme::onAccent();
        }
        painter.setRenderHint(QPainter::Antialiasing);
        const QPointF centre = QRectF(rect()).center();
        const bool isOutlined =
            !lit && AppTheme::contrast() == Contrast::high; // its sign would be lost on it
        painter.setPen(isOutlined ? QPen(disc, hairline) : QPen(Qt::NoPen));
        painter.setBrush(isOutlined ? Qt::NoBrush : QBrush(disc));
        painter.drawEllipse(centre, discSize / 2, discSize / 2);

        painter.setPen(QPen(sign, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.translate(centre);
        if (m_button == WindowButton::close) {
            painter.drawLine(QPointF(-2.5, -2.5), QPointF(2.5, 2.5));
            painter.drawLine(QPointF(-2.5, 2.5), QPointF(2.5, -2.5));
        } else {
            painter.drawLine(QPointF(-3, 0), QPointF(3, 0));
        }
        if (m_button == WindowButton::zoom)
            painter.drawLine(QPointF(0, -3), QPointF(0, 3));
    }

private:
    WindowButton m_button;
    bool m_active = true;
};

} // namespace

TitleBar::TitleBar(QWidget *parent)
    : QWidget(parent), m_toolbar(new QHBoxLayout), m_leading(new QHBoxLayout), m_trailing(new QHBoxLayout) {
    setObjectName(QStringLiteral("titleBar"));
    setFixedHeight(titleBarHeight);

    auto *band = new QHBoxLayout(this);
    band->setContentsMargins(10, 0, 10, 0);
    band->setSpacing(2);
    band->addSpacing(2);
#ifdef Q_OS_MACOS
    constexpr int nativeButtonsWidth = 70;
    band->addSpacing(nativeButtonsWidth);
#else
    for (const WindowButton which : {WindowButton::close, WindowButton::minimise, WindowButton::zoom}) {
        auto *button = new WindowButtonView(which, this);
        connect(button, &QAbstractButton::clicked, this,
                [this, which] { Q_EMIT windowButtonClicked(which); });
        m_buttons.at(static_cast<size_t>(which)) = button;
    }
    band->addLayout(m_leading);
#endif
    band->addStretch(); // until the title, which comes before it, takes all there is
    for (QHBoxLayout *buttons : {m_toolbar, m_leading, m_trailing})
        buttons->setSpacing(2);
    band->addLayout(m_toolbar);
    band->addLayout(m_trailing);
    setButtonLayout(QStringLiteral("close,minimize,maximize:"));
}

void TitleBar::setButtonLayout(const QString &layout) {
#ifndef Q_OS_MACOS
    static const QHash<QString, WindowButton> named{{QStringLiteral("close"), WindowButton::close},
                                                    {QStringLiteral("minimize"), WindowButton::minimise},
                                                    {QStringLiteral("maximize"), WindowButton::zoom}};
    for (QAbstractButton *button : m_buttons)
        button->hide();
    const auto fill = [&](QHBoxLayout *side, const QString &names) {
        while (side->count() > 0)
            delete side->takeAt(0);
        for (const QString &name : names.split(QLatin1Char(','))) {
            const auto which = named.constFind(name.trimmed());
            if (which == named.cend() || !button(*which)->isHidden())
                continue; // a menu, a spacer, or named twice
            side->addWidget(button(*which));
            button(*which)->show();
        }
        return side->count() > 0;
    };
    constexpr int gap = 12;
    if (fill(m_leading, layout.section(QLatin1Char(':'), 0, 0)))
        m_leading->addSpacing(gap);
    if (fill(m_trailing, layout.section(QLatin1Char(':'), 1)))
        m_trailing->insertSpacing(0, gap);
#else
    Q_UNUSED(layout)
#endif
}

int TitleBar::endWidth() const {
    return int(WindowChromeCoordinator::toolbarWidth) + m_trailing->sizeHint().width();
}

void TitleBar::setTitle(const QString &title) {
    // A label without text would open its font all the same.
    if (!m_title && title.isEmpty())
        return;
    if (!m_title) {
        m_title = new TextLabel({.size = 13, .weight = Weight::semibold}, titleColor(), this);
        m_title->setObjectName(QStringLiteral("windowTitle"));
        auto *band = static_cast<QBoxLayout *>(layout());
        band->insertWidget(band->indexOf(m_toolbar) - 1, m_title, 1);
    }
    m_title->setText(title);
}

void TitleBar::addToolbarWidget(QWidget *widget) {
    m_toolbar->addWidget(widget, 0, Qt::AlignVCenter);
}

void TitleBar::setCornerRadius(double radius) {
    m_cornerRadius = radius;
    update();
}

void TitleBar::setActive(bool active) {
    if (m_active == active)
        return;
    m_active = active;
    if (m_title)
        m_title->setColor(titleColor());
    for (QAbstractButton *button : m_buttons) {
        if (auto *view = static_cast<WindowButtonView *>(button))
            view->setActive(active);
    }
}

void TitleBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(roundedTop(rect(), m_cornerRadius), QColor(AppTheme::titleBar()));
    painter.fillRect(QRectF(0, height() - hairline, width(), hairline), AppTheme::stroke());
}

} // namespace vantrel
