#include "App/Updates/Appcast.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>

namespace vantrel {

namespace {

constexpr auto feedNamespace = QLatin1String("http://www.andymatuschak.org/xml-namespaces/sparkle");

#if defined(Q_OS_MACOS)
constexpr auto thisSystem = QLatin1String("macos");
#elif defined(Q_OS_WIN)
constexpr auto thisSystem = QLatin1String("windows");
#else
constexpr auto thisSystem = QLatin1String("linux");
#endif

/// A version comes from the network and is shown: a short word with a digit in it, or none at all.
bool isAbsentOrUsable(const QString &version) {
    static const QRegularExpression usable(
        QStringLiteral("\\A((?=.*[0-9])[0-9A-Za-z][0-9A-Za-z .+_()-]{0,63})?\\z"));
    return usable.match(version).hasMatch();
}

class AppcastReader {
public:
    explicit AppcastReader(const QByteArray &xml) : m_xml(xml) {}

    tl::expected<Appcast, AppcastError> read() {
        while (!m_xml.atEnd() && !m_xml.isStartElement()) {
            if (m_xml.readNext() == QXmlStreamReader::DTD)
                return tl::unexpected(AppcastError::hasDocumentType);
        }
        const bool isRss = !m_xml.hasError() && m_xml.name() == QLatin1String("rss");
        while (isRss && m_xml.readNextStartElement()) {
            if (m_xml.name() == QLatin1String("channel"))
                readChannel();
            else
                m_xml.skipCurrentElement();
        }
        while (!m_xml.atEnd())
            m_xml.readNext(); // whatever follows must be well-formed too
        if (m_xml.hasError())
            return tl::unexpected(AppcastError::malformed);
        if (!m_hasChannel)
            return tl::unexpected(AppcastError::notAFeed);
        return m_feed;
    }

private:
    void readChannel() {
        m_hasChannel = true;
        while (m_xml.readNextStartElement()) {
            if (isPlain("item"))
                readItem();
            else if (isPlain("link"))
                m_feed.link = readUrl();
            else
                m_xml.skipCurrentElement();
        }
    }

    void readItem() {
        AppcastItem item;
        bool isForUs = true;
        while (m_xml.readNextStartElement()) {
            if (isPlain("link")) {
                item.link = readUrl();
            } else if (isPlain("enclosure")) {
                // Older feeds carry the versions as attributes of the file.
                const QXmlStreamAttributes attributes = m_xml.attributes();
                item.enclosure = QUrl(attributes.value(QLatin1String("url")).toString(), QUrl::StrictMode);
                if (item.version.build.isEmpty())
                    item.version.build = attributes.value(feedNamespace, QLatin1String("version")).toString();
                if (item.version.shortVersion.isEmpty())
                    item.version.shortVersion =
                        attributes.value(feedNamespace, QLatin1String("shortVersionString")).toString();
                const auto system = attributes.value(feedNamespace, QLatin1String("os"));
                isForUs = isForUs && (system.isEmpty() || system == thisSystem);
                m_xml.skipCurrentElement();
            } else if (isFeed("version")) {
                item.version.build = readText();
            } else if (isFeed("shortVersionString")) {
                item.version.shortVersion = readText();
            } else if (isFeed("channel")) {
                isForUs = false; // a beta channel: only for those who ask for it
                m_xml.skipCurrentElement();
            } else {
                m_xml.skipCurrentElement();
            }
        }
        const bool versionIsUsable = !item.version.label().isEmpty() &&
                                     isAbsentOrUsable(item.version.build) &&
                                     isAbsentOrUsable(item.version.shortVersion);
        if (isForUs && versionIsUsable)
            m_feed.items.append(item);
    }

    bool isPlain(const char *name) const {
        return m_xml.namespaceUri().isEmpty() && m_xml.name() == QLatin1String(name);
    }
    bool isFeed(const char *name) const {
        return m_xml.namespaceUri() == feedNamespace && m_xml.name() == QLatin1String(name);
    }
    QString readText() { return m_xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed(); }
    QUrl readUrl() { return QUrl(readText(), QUrl::StrictMode); }

    QXmlStreamReader m_xml;
    Appcast m_feed;
    bool m_hasChannel = false;
};

} // namespace

std::optional<AppcastItem> Appcast::newest() const {
    const auto older = [](const AppcastItem &left, const AppcastItem &right) {
        return isNewer(right.version, left.version);
    };
    const auto newest = std::max_element(items.begin(), items.end(), older);
    if (newest == items.end())
        return std::nullopt;
    return *newest;
}

tl::expected<Appcast, AppcastError> parseAppcast(const QByteArray &xml) {
    return AppcastReader(xml).read();
}

} // namespace vantrel
