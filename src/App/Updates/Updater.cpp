#include "App/Updates/Updater.h"

#include "App/System/Product.h"
#include "App/System/Version.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <utility>

namespace vantrel {

namespace {

constexpr int maximumRedirects = 5;

bool isHttps(const QUrl &url) {
    return url.isValid() && url.scheme() == QLatin1StringView("https") && !url.host().isEmpty();
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

} // namespace

UpdateMessage describe(const UpdateResult &result, const AppVersion &installed) {
    switch (result.kind) {
    case UpdateResult::Kind::upToDate:
        return {.heading = QStringLiteral("You’re up to date."),
                .detail =
                    product::name() + u' ' + installed.label() + QStringLiteral(" is the newest version."),
                .actionLabel = {}};
    case UpdateResult::Kind::available:
        return {.heading = QStringLiteral("A new version of %1 is available.").arg(product::name()),
                .detail = QStringLiteral("%1 %2 can be downloaded. You have %3.")
                              .arg(product::name(), result.available.label(), installed.label()),
                .actionLabel = QStringLiteral("Open Download Page")};
    case UpdateResult::Kind::failed:
        break;
    }
    return {.heading = QStringLiteral("Could not check for updates."),
            .detail = result.reason,
            .actionLabel = {}};
}

Updater::Configuration Updater::builtIn() {
    Configuration configuration;
    configuration.feed = QUrl(version::updateFeed(), QUrl::StrictMode);
    configuration.installed = {version::shortVersion(), version::build()};
    return configuration;
}

Updater::Updater(Configuration configuration, QObject *parent)
    : QObject(parent), m_configuration(std::move(configuration)) {
    m_deadline.setSingleShot(true);
    m_deadline.setInterval(m_configuration.timeout);
    connect(&m_deadline, &QTimer::timeout, this,
            [this] { fail(QStringLiteral("The update server did not answer in time.")); });
}

void Updater::start() {
    setCanCheck(!m_configuration.feed.isEmpty());
}

void Updater::checkForUpdates() {
    if (!m_canCheck)
        return;
    setCanCheck(false);
    if (!isHttps(m_configuration.feed)) {
        fail(QStringLiteral("The address of the update feed is not an HTTPS address."));
        return;
    }
    m_redirects = 0;
    m_deadline.start();
    request(m_configuration.feed);
}

void Updater::request(const QUrl &address) {
    QNetworkRequest request(address);
    if (m_configuration.tls)
        request.setSslConfiguration(*m_configuration.tls);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QString(product::name() + u'/' + m_configuration.installed.shortVersion));
    request.setRawHeader("Accept", "application/rss+xml, application/xml, text/xml");
    // No compression: the size limit then counts what comes over the wire.
    request.setRawHeader("Accept-Encoding", "identity");
    // Redirects are followed here: asked for a decision, Qt 6.4 follows the second one twice.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        request.setAttribute(attribute, QNetworkRequest::Manual);

    m_body.clear();
    if (!m_network) {
        m_network = new QNetworkAccessManager(this);
        m_network->setAutoDeleteReplies(true);
    }
    m_reply = m_network->get(request);
    m_reply->setReadBufferSize(maximumFeedSize / 16);
    connect(m_reply, &QNetworkReply::readyRead, this, &Updater::receive);
    connect(m_reply, &QNetworkReply::finished, this, &Updater::replyFinished);
}

void Updater::follow(const QUrl &target) {
    if (!isHttps(target))
        fail(QStringLiteral("The update server redirects to an address that is not HTTPS."));
    else if (target.host() != m_configuration.feed.host())
        fail(QStringLiteral("The update server redirects to another host, %1.").arg(target.host()));
    else if (++m_redirects > maximumRedirects)
        fail(QStringLiteral("The update server redirects too often."));
    else
        request(target);
}

void Updater::receive() {
    m_body += m_reply->readAll();
    if (m_body.size() > maximumFeedSize)
        fail(QStringLiteral("The update feed is larger than 1 MB."));
}

void Updater::replyFinished() {
    constexpr int ok = 200;
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QUrl redirection = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    const QNetworkReply::NetworkError error = m_reply->error();
    if (error == QNetworkReply::NoError && redirection.isValid()) {
        follow(m_reply->url().resolved(redirection));
    } else if (error == QNetworkReply::NoError && status == ok) {
        receive();
        if (m_reply)
            finish(judge(m_body));
    } else if (error == QNetworkReply::SslHandshakeFailedError) {
        fail(QStringLiteral("The connection to the update server is not secure: %1")
                 .arg(m_reply->errorString()));
    } else if (status > ok) {
        fail(QStringLiteral("The update server answered with status %1.").arg(status));
    } else {
        fail(QStringLiteral("The update server could not be reached: %1").arg(m_reply->errorString()));
    }
}

UpdateResult Updater::judge(const QByteArray &feed) const {
    const auto failed = [](const QString &reason) {
        return UpdateResult{
            .kind = UpdateResult::Kind::failed, .available = {}, .downloadPage = {}, .reason = reason};
    };
    const tl::expected<Appcast, AppcastError> appcast = parseAppcast(feed);
    if (!appcast)
        return failed(text(appcast.error()));
    const std::optional<AppcastItem> newest = appcast->newest();
    if (!newest || !isNewer(newest->version, m_configuration.installed))
        return {.kind = UpdateResult::Kind::upToDate, .available = {}, .downloadPage = {}, .reason = {}};
    for (const QUrl &page : {newest->link, appcast->link, newest->enclosure}) {
        if (mayOpen(page))
            return {.kind = UpdateResult::Kind::available,
                    .available = newest->version,
                    .downloadPage = page,
                    .reason = {}};
    }
    return failed(
        QStringLiteral("Version %1 is available, but the update feed names no safe address to get it from.")
            .arg(newest->version.label()));
}

bool Updater::mayOpen(const QUrl &page) const {
    return isHttps(page) && page.userInfo().isEmpty() &&
           (page.host() == m_configuration.feed.host() || page.host() == product::websiteDomain());
}

void Updater::fail(const QString &reason) {
    finish({.kind = UpdateResult::Kind::failed, .available = {}, .downloadPage = {}, .reason = reason});
}

void Updater::finish(const UpdateResult &result) {
    m_deadline.stop();
    m_body.clear();
    if (QNetworkReply *reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
    }
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
