#include "App/Sheets/AboutTexts.h"

#include "App/System/Product.h"
#include "App/System/Version.h"

namespace vantrel {

BuildInformation BuildInformation::ofThisBuild() {
    return {.shortVersion = version::shortVersion(),
            .build = version::build(),
            .copyright = product::copyright()};
}

AboutTexts::AboutTexts(const BuildInformation &information)
    : m_shortVersion(information.shortVersion.value_or(QStringLiteral("0.1.0"))),
      m_build(information.build.value_or(QString())),
      m_copyright(information.copyright.value_or(product::copyright())) {}

QString AboutTexts::versionLabel() const {
    const QString label = QStringLiteral("Version ") + m_shortVersion;
    return m_build.isEmpty() ? label : label + QStringLiteral(" (") + m_build + u')';
}

QString AboutTexts::title() const {
    return product::name() + QStringLiteral(" (") + m_shortVersion + u')';
}

QString AboutTexts::feedbackSubject() const {
    return QStringLiteral("Vantrel feedback (v") + m_shortVersion + u')';
}

QString AboutTexts::feedbackBody() const {
    return QStringLiteral("\n\n---\nVantrel ") + versionLabel();
}

QUrl AboutTexts::feedbackUrl() const {
    return mailUrl(product::feedbackAddress(), feedbackSubject(), feedbackBody());
}

QUrl mailUrl(const QString &address, const QString &subject, const QString &body) {
    // Encoded by hand: QUrlQuery leaves "+" and "&" in a value as they are, and a mail program would stumble
    // over both.
    const QByteArray encoded = "mailto:" + QUrl::toPercentEncoding(address, "@") +
                               "?subject=" + QUrl::toPercentEncoding(subject) +
                               "&body=" + QUrl::toPercentEncoding(body);
    return QUrl::fromEncoded(encoded, QUrl::StrictMode);
}

} // namespace vantrel
