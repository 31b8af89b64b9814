#include "Preferences/PreferencesFile.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QStringDecoder>

#include <filesystem>
#include <optional>

namespace vantrel {

namespace {

constexpr qint64 maximumSize = 4'194'304;

struct Line {
    enum class Kind { other, heading, entry, nonsense };

    Kind kind = Kind::other;
    QString key; ///< of an entry; of a heading its name
    QString value = {};
};

Line parse(QStringView raw) {
    const QStringView line = raw.trimmed();
    const qsizetype equals = line.indexOf(u'=');
    if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#'))
        return {Line::Kind::other, {}};
    if (line.startsWith(u'[') && line.endsWith(u']'))
        return {Line::Kind::heading, line.sliced(1, line.size() - 2).toString()};
    if (equals > 0)
        return {Line::Kind::entry, line.first(equals).trimmed().toString(),
                line.sliced(equals + 1).trimmed().toString()};
    return {Line::Kind::nonsense, {}};
}

/// Whether the entries below this heading are ours.
bool isOurs(const Line &heading) {
    return heading.key == QStringLiteral("General");
}

/// The entries; nothing when the text is no such file.
std::optional<QMap<QString, QString>> entries(const QString &text) {
    QMap<QString, QString> values;
    bool isOurSection = true;
    for (const QStringView raw : QStringView(text).split(u'\n')) {
        const Line line = parse(raw);
        if (line.kind == Line::Kind::nonsense)
            return std::nullopt;
        if (line.kind == Line::Kind::heading)
            isOurSection = isOurs(line);
        else if (line.kind == Line::Kind::entry && isOurSection)
            values.insert(line.key, line.value);
    }
    return values;
}

/// The text with these values in place of the old ones, or behind the last line of ours.
QString merged(const QString &text, QMap<QString, QString> changes) {
    const QMap<QString, QString> all = changes;
    QStringList lines = text.isEmpty() ? QStringList() : text.split(u'\n');
    qsizetype end = 0; // behind our last line
    bool isOurSection = true;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const Line line = parse(lines[i]);
        if (line.kind == Line::Kind::heading)
            isOurSection = isOurs(line);
        if (isOurSection && !lines[i].trimmed().isEmpty())
            end = i + 1;
        if (line.kind == Line::Kind::entry && isOurSection && all.contains(line.key)) {
            lines[i] = line.key + u'=' + all.value(line.key);
            changes.remove(line.key);
        }
    }
    for (auto change = changes.cbegin(); change != changes.cend(); ++change)
        lines.insert(end++, change.key() + u'=' + change.value());
    if (lines.last().size() > 0)
        lines.append(QString());
    return lines.join(u'\n');
}

} // namespace

PreferencesFile::PreferencesFile(QString path) : m_path(std::move(path)) {
    reload();
}

void PreferencesFile::setValue(const QString &key, const QString &value) {
    const QString line = QString(value).replace(u'\n', u' ').trimmed();
    if (m_values.value(key) == line && m_values.contains(key))
        return;
    m_values.insert(key, line);
    m_changes.insert(key, line);
}

void PreferencesFile::reload() {
    m_text.clear();
    m_values = m_changes;
    // Asked before it is opened: opening a pipe waits for somebody to write into it.
    std::error_code error;
    const auto type = std::filesystem::status(QFile::encodeName(m_path).toStdString(), error).type();
    m_state = type == std::filesystem::file_type::not_found ? State::missing : State::unreadable;
    QFile file(m_path);
    if (type != std::filesystem::file_type::regular || !file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.read(maximumSize + 1);
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    const auto values = entries(text);
    m_state = State::damaged;
    if (bytes.size() > maximumSize || bytes.contains('\0') || decoder.hasError() || !values)
        return;
    m_state = State::readable;
    m_text = text;
    m_values = *values;
    m_values.insert(m_changes);
}

QString PreferencesFile::save() {
    if (m_changes.isEmpty())
        return {};
    QDir().mkpath(QFileInfo(m_path).path());
    // Several copies of the program share the file. Where the lock cannot be had, the file can hardly be
    // written either, and the attempt says why.
    QLockFile lock(m_path + QStringLiteral(".lock"));
    static_cast<void>(lock.tryLock(1000));
    reload();
    if (m_state == State::damaged) {
        // Copied and not moved: until the new file is in its place, the damaged one has to be seen.
        const QString aside = m_path + QStringLiteral(".damaged");
        QFile::remove(aside);
        if (!QFile::copy(m_path, aside))
            return QStringLiteral("%1 is damaged and cannot be put aside").arg(m_path);
    }
    const QString text = merged(m_text, m_changes);
    QString problem = write(text);
    if (problem.isEmpty()) {
        m_text = text;
        m_state = State::readable;
        m_changes.clear();
    }
    return problem;
}

QString PreferencesFile::write(const QString &text) const {
    if (m_state == State::unreadable)
        return QStringLiteral("%1 cannot be read").arg(m_path);
    QSaveFile file(m_path);
    const QByteArray bytes = text.toUtf8();
    // On a full disk the commit alone would put an empty file in the old one's place: it overlooks what comes
    // of the last flush.
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit())
        return {};
    return m_path + QStringLiteral(": ") + file.errorString();
}

} // namespace vantrel
