#pragma once

#include "App/Updates/Appcast.h"
#include "Network/HttpExchange.h"

#include <QObject>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

namespace vantrel {

/// What a check for updates found out.
struct UpdateResult {
    enum class Kind { upToDate, available, failed };

    Kind kind = Kind::failed;
    AppVersion available = {}; ///< the newer version
    QUrl downloadPage = {};    ///< where to get it: always HTTPS, on the feed's host or the product's own
    QString reason = {};       ///< why the check failed, one sentence for the user
};

/// What the user is told about a result, as plain text.
struct UpdateMessage {
    QString heading;
    QString detail;
    QString actionLabel = {}; ///< of the button that opens the download page; empty without one
};

[[nodiscard]] UpdateMessage describe(const UpdateResult &result, const AppVersion &installed);

/// Asks the update feed whether there is a newer version. It downloads and installs nothing, and it only asks
/// when it is told to. Main thread; never blocks.
class Updater : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)

public:
    /// A feed larger than this is refused.
    static constexpr qint64 maximumFeedSize = 1'048'576;

    struct Configuration {
        QUrl feed; ///< empty: this build has none, and no check is ever offered
        AppVersion installed;
        std::optional<QSslConfiguration> tls = std::nullopt;          ///< the system's unless given
        std::chrono::milliseconds timeout = std::chrono::seconds(30); ///< for the whole check
    };

    /// The feed that was fixed at build time and the version of this build.
    [[nodiscard]] static Configuration builtIn();

    explicit Updater(Configuration configuration, QObject *parent = nullptr);

    /// Makes checks available where there is a feed. Called once at launch; sends nothing.
    void start() { setCanCheck(!m_configuration.feed.isEmpty()); }

    /// False before start(), without a feed, and while a check runs.
    [[nodiscard]] bool canCheckForUpdates() const { return m_canCheck; }
    [[nodiscard]] const AppVersion &installedVersion() const { return m_configuration.installed; }

    /// Why no check is ever offered, for the user; empty in a build with a feed.
    [[nodiscard]] QString whyNever() const;

    /// Starts a check whose outcome comes as checked(); does nothing while canCheckForUpdates() is false.
    void checkForUpdates();

Q_SIGNALS:
    void canCheckForUpdatesChanged(bool canCheck);
    void checked(const vantrel::UpdateResult &result);

private:
    void setCanCheck(bool canCheck);
    void finish(const UpdateResult &result);
    [[nodiscard]] UpdateResult judge(const tl::expected<HttpResponse, HttpError> &answer) const;
    [[nodiscard]] UpdateResult judge(const Appcast &feed) const;
    [[nodiscard]] bool mayOpen(const QUrl &page) const;

    Configuration m_configuration;
    bool m_canCheck = false;
};

} // namespace vantrel
