#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace vantrel {

/// What the build says about itself; any of it may be missing.
struct BuildInformation {
    std::optional<QString> shortVersion;
    std::optional<QString> build;
    std::optional<QString> copyright;

    [[nodiscard]] static BuildInformation ofThisBuild();
};

/// The texts of the About window.
class AboutTexts {
public:
    explicit AboutTexts(const BuildInformation &information);

    /// "1.4"; "0.1.0" for a build that does not know.
    [[nodiscard]] QString shortVersion() const { return m_shortVersion; }
    /// "Version 1.4 (27)", or "Version 1.4" without a build number.
    [[nodiscard]] QString versionLabel() const;
    /// "Vantrel (1.4)"
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString copyright() const { return m_copyright; }

    [[nodiscard]] QString feedbackSubject() const;
    /// Room to type above a line that names the version.
    [[nodiscard]] QString feedbackBody() const;
    /// A mailto address that opens a message with the subject and the body.
    [[nodiscard]] QUrl feedbackUrl() const;

private:
    QString m_shortVersion;
    QString m_build;
    QString m_copyright;
};

/// A mailto URL for a message to `address`, everything that has a meaning in a URL percent-encoded.
[[nodiscard]] QUrl mailUrl(const QString &address, const QString &subject, const QString &body);

} // namespace vantrel
