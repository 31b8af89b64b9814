#include "App/AboutView.h"

#include "App/AppTheme.h"
#include "App/Product.h"
#include "App/SheetButtons.h"
#include "Views/Kit/Divider.h"
#include "Views/Kit/TextLabel.h"

#include <QDesktopServices>
#include <QPainter>
#include <QSvgRenderer>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int viewWidth = 340;
constexpr int iconSize = 52;

class IconView : public QWidget {
public:
    IconView() : m_drawing(QStringLiteral(":/icon/vantrel.svg")) { setFixedSize(iconSize, iconSize); }

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

LinkButton *link(const QString &title, const QString &help, const QString &name) {
    auto *button = new LinkButton(title);
    button->setToolTip(help);
    button->setAccessibleDescription(help);
    button->setObjectName(name);
    return button;
}

} // namespace

AboutView::AboutView(QWidget *window, const AboutTexts &texts)
    : Sheet(QStringLiteral("About ") + product::name(), window), m_texts(texts) {
    constexpr TextStyle small{.size = 12, .weight = Weight::medium};
    auto *main = new QVBoxLayout;
    main->setContentsMargins(28, 28, 28, 22);
    main->setSpacing(18);
    main->addWidget(new IconView, 0, Qt::AlignHCenter);
    main->addWidget(centred(m_texts.title(), {.size = 18, .weight = Weight::semibold}, AppTheme::ink()));
    main->addWidget(centred(QStringLiteral("Transfer files between Mac and Android"),
                            {.size = 13, .weight = Weight::medium}, AppTheme::inkSecondary()));
    LinkButton *site = link(product::websiteDomain(), QStringLiteral("Open ") + product::websiteDomain(),
                            QStringLiteral("about.website"));
    connect(site, &QAbstractButton::clicked, this, &AboutView::openWebsite);
    main->addWidget(site, 0, Qt::AlignHCenter);
    main->addWidget(
        centred(QStringLiteral("Connect your phone with USB debugging on."), small, AppTheme::inkTertiary()));

    auto *feedback = new QVBoxLayout;
    feedback->setContentsMargins(0, 2, 0, 0);
    feedback->setSpacing(6);
    feedback->addWidget(
        centred(QStringLiteral("Found a bug or have an idea?"), small, AppTheme::inkTertiary()));
    LinkButton *mail = link(QStringLiteral("Send Feedback"), QStringLiteral("Email feedback about Vantrel"),
                            QStringLiteral("about.feedback"));
    connect(mail, &QAbstractButton::clicked, this, &AboutView::openFeedbackMail);
    feedback->addWidget(mail, 0, Qt::AlignHCenter);
    main->addLayout(feedback);

    TextLabel *copyright = centred(m_texts.copyright(), {.size = 11}, AppTheme::inkTertiary());
    copyright->setContentsMargins(0, 4, 0, 0);
    main->addWidget(copyright);
    content()->addLayout(main);

    content()->addWidget(new Divider);
    auto *close = new BorderedButton(QStringLiteral("Close"), BorderedButton::Prominence::prominent);
    close->setToolTip(QStringLiteral("Close About"));
    close->setObjectName(QStringLiteral("about.close"));
    connect(close, &QAbstractButton::clicked, this, &QDialog::accept);
    setDefaultButton(close);
    content()->addSpacing(14);
    content()->addWidget(close, 0, Qt::AlignHCenter);
    content()->addSpacing(14);

    setFixedWidth(viewWidth);
    content()->setSizeConstraint(QLayout::SetMinimumSize);
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
