#include "App/Sheets/AboutView.h"

#include "App/System/Product.h"
#include "Kit/Accessibility.h"
#include "Kit/AppStyle.h"
#include "Kit/Canvas.h"
#include "Kit/TextLabel.h"
#include "MacFiles/ThisComputer.h"
#include "Theme/AppTheme.h"

#include <QDesktopServices>
#include <QPainter>
#include <QPushButton>
#include <QSvgRenderer>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int viewWidth = 340;
constexpr int iconSize = 52;

class IconView : public QWidget {
public:
    IconView() : m_drawing(QStringLiteral(":/icon/vantrel.svg")) {
        setFixedSize(iconSize, iconSize);
        describe(this, QAccessible::Graphic, {});
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        m_drawing.render(&painter, rect());
    }

private:
    QSvgRenderer m_drawing;
};

TextLabel *centred(const QString &text, const TextStyle &style, const ThemeColor &color) {
    auto *label = new TextLabel(style, color);
    label->setAlignment(Qt::AlignCenter);
    label->setText(text);
    return label;
}

} // namespace

AboutView::AboutView(QWidget *window, const AboutTexts &texts)
    : Sheet(QStringLiteral("About ") + product::name(), viewWidth, window), m_texts(texts) {
    constexpr TextStyle small{.size = 12, .weight = Weight::medium};
    constexpr int gap = 18;
    constexpr int linkGap = gap - AppStyle::linkMargin; // a link has room around its text
    const auto link = [this](const QString &title, const QString &help, const QString &name) {
        QPushButton *button = makeButton(title, name);
        button->setFlat(true);
        button->setCursor(Qt::PointingHandCursor);
        button->setToolTip(help);
        button->setAccessibleDescription(help);
        return button;
    };
    auto *main = new QVBoxLayout;
    main->setContentsMargins(28, 28, 28, 22);
    main->setSpacing(0);
    main->addWidget(new IconView, 0, Qt::AlignHCenter);
    main->addSpacing(gap);
    main->addWidget(centred(m_texts.title(), {.size = 18, .weight = Weight::semibold}, AppTheme::ink()));
    main->addSpacing(gap);
    main->addWidget(centred(QStringLiteral("Transfer files between %1 and Android").arg(thisComputer()),
                            {.size = 13, .weight = Weight::medium}, AppTheme::inkSecondary()));
    main->addSpacing(linkGap);
    QPushButton *site = link(product::websiteDomain(), QStringLiteral("Open ") + product::websiteDomain(),
                             QStringLiteral("about.website"));
    connect(site, &QAbstractButton::clicked, this, &AboutView::openWebsite);
    main->addWidget(site, 0, Qt::AlignHCenter);
    main->addSpacing(linkGap);
    main->addWidget(
        centred(QStringLiteral("Connect your phone with USB debugging on."), small, AppTheme::inkTertiary()));
    main->addSpacing(gap + 2);
    main->addWidget(centred(QStringLiteral("Found a bug or have an idea?"), small, AppTheme::inkTertiary()));
    main->addSpacing(6 - AppStyle::linkMargin);
    QPushButton *mail = link(QStringLiteral("Send Feedback"), QStringLiteral("Email feedback about Vantrel"),
                             QStringLiteral("about.feedback"));
    connect(mail, &QAbstractButton::clicked, this, &AboutView::openFeedbackMail);
    main->addWidget(mail, 0, Qt::AlignHCenter);
    main->addSpacing(linkGap + 4);
    main->addWidget(centred(m_texts.copyright(), {.size = 11}, AppTheme::inkTertiary()));
    content()->addLayout(main);

    QPushButton *close = makeButton(QStringLiteral("Close"), QStringLiteral("about.close"));
    close->setDefault(true);
    close->setToolTip(QStringLiteral("Close About"));
    connect(close, &QAbstractButton::clicked, this, &QDialog::accept);
    footer()->addSpacing(14);
    footer()->addWidget(close, 0, Qt::AlignHCenter);
    footer()->addSpacing(14);
}

void AboutView::openWebsite() {
    const QUrl address(product::website(), QUrl::StrictMode);
    if (address.isValid())
        QDesktopServices::openUrl(address);
}

void AboutView::openFeedbackMail() const {
    const QUrl message = m_texts.feedbackUrl();
    if (message.isValid())
        QDesktopServices::openUrl(message);
}

} // namespace vantrel
