#include "App/Updates/Updater.h"

#include "App/System/Product.h"
#include "App/System/Version.h"

#include <utility>

namespace vantrel {

namespace {

bool isHttps(const QUrl &url) {
    return url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
}

QString text(AppcastError error) {
    switch (error) {
    case AppcastError::malformed:
        return QStringLiteral("The update feed is damaged.");
    case AppcastError::hasDocumentType:
        return QStringLiteral("The update feed contains a document type, which is not allowed.");
    case AppcastError::notAFeed:
        break;
    }
    return QStringLiteral("The update server did not answer with an update feed.");
}

QString text(const HttpError &error) {
    switch (error.kind) {
    case HttpError::Kind::timedOut:
        return QStringLiteral("The update server did not answer in time.");
    case HttpError::Kind::notSecure:
        return QStringLiteral("The connection to the update server is not secure: %1").arg(error.text);
    case HttpError::Kind::redirectedToPlainHttp:
        return QStringLiteral("The update server redirects to an address that is not HTTPS.");
    case HttpError::Kind::redirectedElsewhere:
        return QStringLiteral("The update server redirects to another host, %1.").arg(error.text);
    case HttpError::Kind::redirectedTooOften:
        return QStringLiteral("The update server redirects too often.");
    case HttpError::Kind::failed:
        break;
    }
    return QStringLiteral("The update server could not be reached: %1").arg(error.text);
}

UpdateResult failed(const QString &reason) {
    return {.kind = UpdateResult::Kind::failed, .reason = reason};
}

} // namespace

UpdateMessage describe(const UpdateResult &result, const AppVersion &installed) {
    switch (result.kind) {
    case UpdateResult::Kind::upToDate:
        return {.heading = QStringLiteral("You’re up to date."),
                .detail =
                    product::name() + u' ' + installed.label() + QStringLiteral(" is the newest version.")};
    case UpdateResult::Kind::available:
        return {.heading = QStringLiteral("A new version of %1 is available.").arg(product::name()),
                .detail = QStringLiteral("%1 %2 can be downloaded. You have %3.")
                              .arg(product::name(), result.available.label(), installed.label()),
                .actionLabel = QStringLiteral("Open Download Page")};
    case UpdateResult::Kind::failed:
        break;
    }
    return {.heading = QStringLiteral("Could not check for updates."), .detail = result.reason};
}

Updater::Configuration Updater::builtIn() {
    return {.feed = QUrl(version::updateFeed(), QUrl::StrictMode),
            .installed = {version::shortVersion(), version::build()}};
}

Updater::Updater(Configuration configuration, QObject *parent)
    : QObject(parent), m_configuration(std::move(configuration)) {}

QString Updater::whyNever() const {
    return m_configuration.feed.isEmpty() ? QStringLiteral("This build has no update feed") : QString();
}

void Updater::checkForUpdates() {
    if (!m_canCheck)
        return;
    setCanCheck(false);
    if (!isHttps(m_configuration.feed))
        return finish(failed(QStringLiteral("The address of the update feed is not an HTTPS address.")));
    HttpRequest request{.url = m_configuration.feed};
    request.headers = {
        {"User-Agent", QString(product::name() + u'/' + m_configuration.installed.shortVersion).toUtf8()},
        {"Accept", "application/rss+xml, application/xml, text/xml"},
        // No compression: the size limit then counts what comes over the wire.
        {"Accept-Encoding", "identity"}};
    request.timeout = m_configuration.timeout;
    request.maximumSize = maximumFeedSize;
    request.maximumRedirects = 5;
    request.tls = m_configuration.tls;
    startHttpExchange(request, this, [this](const auto &answer) { finish(judge(answer)); });
}

UpdateResult Updater::judge(const tl::expected<HttpResponse, HttpError> &answer) const {
    constexpr int ok = 200;
    if (!answer)
        return failed(text(answer.error()));
    if (answer->status != ok)
        return failed(QStringLiteral("The update server answered with status %1.").arg(answer->status));
    if (answer->isCutOff)
        return failed(QStringLiteral("The update feed is larger than 1 MB."));
    const tl::expected<Appcast, AppcastError> feed = parseAppcast(answer->body);
    return feed ? judge(*feed) : failed(text(feed.error()));
}

UpdateResult Updater::judge(const Appcast &feed) const {
    const std::optional<AppcastItem> newest = feed.newest();
    if (!newest || !isNewer(newest->version, m_configuration.installed))
        return {.kind = UpdateResult::Kind::upToDate};
    for (const QUrl &page : {newest->link, feed.link, newest->enclosure}) {
        if (mayOpen(page))
            return {
                .kind = UpdateResult::Kind::available, .available = newest->version, .downloadPage = page};
    }
    return failed(
        QStringLiteral("Version %1 is available, but the update feed names no safe address to get it from.")
            .arg(newest->version.label()));
}

bool Updater::mayOpen(const QUrl &page) const {
    return isHttps(page) && page.userInfo().isEmpty() &&
           (page.host() == m_configuration.feed.host() || page.host() == product::websiteDomain());
}

void Updater::finish(const UpdateResult &result) {
    setCanCheck(true);
    Q_EMIT checked(result);
}

void Updater::setCanCheck(bool canCheck) {
    if (m_canCheck == canCheck)
        return;
    m_canCheck = canCheck;
    Q_EMIT canCheckForUpdatesChanged(canCheck);
}

} // namespace vantrel
