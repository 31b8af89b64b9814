#include "App/System/Settings.h"

#include "App/System/Product.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringDecoder>

namespace vantrel {

namespace {

const QString appearanceKey = QStringLiteral("appearancePreference");
const QString toolTipDelayKey = QStringLiteral("NSInitialToolTipDelay");
const QString doubleClickKey = QStringLiteral("AppleActionOnDoubleClick");
const QString analyticsKey = QStringLiteral("analyticsDisabled");
constexpr QStringView generalSection = u"General"; // of the keys above

/// Where the settings are, off the Mac.
QString userPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/vantrel/settings.ini");
}

/// Lines "key=value" under headings "[section]", in UTF-8. Unlike the toolkit's own format, values are
/// nothing but text: that one turns "@Variant(…)" into any object of any size.
bool readPlainText(QIODevice &device, QSettings::SettingsMap &map) {
    constexpr qint64 largest = 64 * 1024;
    const QByteArray bytes = device.read(largest + 1);
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (bytes.size() > largest || bytes.contains('\0') || decoder.hasError())
        return false;
    QString section;
    for (const QStringView raw : QStringView(text).split(u'\n')) {
        const QStringView line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#'))
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            const QStringView name = line.sliced(1, line.size() - 2);
            section = name == generalSection ? QString() : QString(name % u'/');
        } else if (equals > 0) {
            map.insert(section % line.first(equals).trimmed(), line.sliced(equals + 1).trimmed().toString());
        } else {
            return false;
        }
    }
    return true;
}

bool writePlainText(QIODevice &device, const QSettings::SettingsMap &map) {
    QMap<QString, QByteArray> sections;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        const qsizetype slash = entry.key().indexOf(u'/');
        const QString section = slash < 0 ? QString() : entry.key().first(slash);
        const QString line =
            entry.key().sliced(slash + 1) % u'=' % entry.value().toString().simplified() % u'\n';
        sections[section] += line.toUtf8();
    }
    QByteArray text;
    for (auto section = sections.cbegin(); section != sections.cend(); ++section)
        text += '[' + (section.key().isEmpty() ? generalSection.toString() : section.key()).toUtf8() + "]\n" +
                *section + '\n';
    return device.write(text) == text.size();
}

QSettings::Format plainText() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("ini"), readPlainText, writePlainText);
    return format;
}

/// A damaged file would be read in part and never be written again. It is put aside, where a curious user
/// finds it.
QString withoutDamage(const QString &path) {
    if (!QFileInfo(path).isFile())
        return path;
    const QSettings probe(path, plainText());
    if (probe.status() == QSettings::FormatError) {
        const QString aside = path + QStringLiteral(".damaged");
        QFile::remove(aside);
        QFile::rename(path, aside);
    }
    return path;
}

} // namespace

#ifdef Q_OS_MACOS
// The user defaults of the bundle, which include what the system's own settings hold.
Settings::Settings() : m_store(product::websiteDomain(), product::name()) {}
#else
Settings::Settings() : Settings(userPath()) {}
#endif

Settings::Settings(const QString &path) : m_store(withoutDamage(path), plainText()) {}

ColorScheme Settings::appearancePreference() const {
    return m_store.value(appearanceKey).toString() == QLatin1StringView("dark") ? ColorScheme::dark
                                                                                : ColorScheme::light;
}

void Settings::setAppearancePreference(ColorScheme scheme) {
    m_store.setValue(appearanceKey,
                     scheme == ColorScheme::dark ? QStringLiteral("dark") : QStringLiteral("light"));
}

void Settings::storeToolTipDelay() {
    // Storing what is stored would write the file, and wait for the disk, at every start.
    const auto milliseconds = static_cast<int>(toolTipDelay.count());
    if (m_store.value(toolTipDelayKey).toInt() != milliseconds)
        m_store.setValue(toolTipDelayKey, milliseconds);
}

QString Settings::doubleClickAction() const {
    const QString action = m_store.value(doubleClickKey).toString();
    return action.isEmpty() ? QStringLiteral("Maximize") : action;
}

bool Settings::analyticsDisabled() const {
    return m_store.value(analyticsKey, false).toBool();
}

bool Settings::save() {
    m_store.sync();
    return m_store.status() == QSettings::NoError;
}

} // namespace vantrel
