#include "ADB/TreeText.h"

#include "ADB/AndroidPath.h"
#include "ADB/ToolText.h"

#include <algorithm>

namespace vantrel::ADBClient {

namespace {

/// One record, its path still as bytes.
struct Record {
    TreeEntry entry;
    QByteArrayView path;
};

TreeEntry::Kind kindOf(char letter) {
    return letter == 'd'   ? TreeEntry::Kind::folder
           : letter == '-' ? TreeEntry::Kind::file
                           : TreeEntry::Kind::other;
}

/// Takes what stands before the next blank.
QByteArrayView takeField(QByteArrayView &text) {
    const qsizetype blank = text.indexOf(' ');
    const QByteArrayView field = text.first(std::max<qsizetype>(blank, 0));
    text = text.sliced(blank + 1);
    return field;
}

std::optional<Record> parseRecord(QByteArrayView text) {
    constexpr qsizetype modeLength = 10;
    const QByteArrayView mode = takeField(text);
    bool isSize = false;
    const qint64 size = takeField(text).toLongLong(&isSize);
    QByteArrayView time = takeField(text);
    if (const qsizetype point = time.indexOf('.'); point >= 0)
        time = time.first(point);
    bool isTime = false;
    const qint64 modified = time.toLongLong(&isTime);
    constexpr qint64 latest = qint64(1) << 40; // seconds: far beyond every calendar, and safe to add to
    if (std::abs(std::clamp(modified, -latest, latest)) == latest)
        return std::nullopt;
    if (mode.size() < modeLength || !isSize || size < 0 || !isTime)
        return std::nullopt;
    const TreeEntry::Kind kind = kindOf(mode.front());
    return Record{{{}, kind, kind == TreeEntry::Kind::file ? size : 0, modified}, text};
}

/// Gives each record of a whole answer to `use`. False when the answer is not whole or not one.
template <class Use>
bool readRecords(const QByteArray &answer, Use use) {
    qsizetype begin = 0;
    for (qsizetype end = answer.indexOf('\0'); end >= 0; end = answer.indexOf('\0', begin)) {
        const auto record = parseRecord(QByteArrayView(answer).sliced(begin, end - begin));
        if (!record)
            return false;
        use(*record);
        begin = end + 1;
    }
    return QByteArrayView(answer).sliced(begin) == QByteArrayView(answerEnd);
}

bool leadsNowhereElse(const QString &path) {
    const QStringList names = path.split(QLatin1Char('/'));
    return std::all_of(names.begin(), names.end(), &AndroidPath::isSafeName);
}

} // namespace

std::optional<FileTree> parseTree(const QByteArray &answer) {
    FileTree tree;
    const bool isWhole = readRecords(answer, [&](Record record) {
        TreeEntry &entry = record.entry;
        entry.path = QString::fromUtf8(record.path);
        const bool isRoot = tree.entries.isEmpty();
        if (isRoot != entry.path.isEmpty() || (!isRoot && !leadsNowhereElse(entry.path)))
            return;
        if (entry.path.toUtf8() != record.path)
            tree.leftOut.append({entry.path, QStringLiteral("This name can’t be used on the other side.")});
        else
            tree.entries.append(std::move(entry));
    });
    return isWhole ? std::optional(std::move(tree)) : std::nullopt;
}

std::optional<QHash<QString, TreeEntry>> parseFacts(const QByteArray &answer) {
    QHash<QString, TreeEntry> facts;
    const bool isWhole = readRecords(
        answer, [&](const Record &record) { facts.insert(QString::fromUtf8(record.path), record.entry); });
    return isWhole ? std::optional(std::move(facts)) : std::nullopt;
}

QByteArray recordsOfLines(const QByteArray &answer, const QString &root) {
    if (!answer.endsWith(answerEnd))
        return {};
    const QByteArray folder = root.isEmpty() ? QByteArray() : root.toUtf8() + '/';
    QByteArray records;
    for (const QByteArray &line : answer.chopped(qsizetype(sizeof answerEnd) - 1).split('\n')) {
        const auto record = parseRecord(line);
        const bool isRoot = record && !folder.isEmpty() && record->path == folder.chopped(1);
        if (record && (isRoot || record->path.startsWith(folder))) {
            const QByteArray path = isRoot ? QByteArray() : record->path.toByteArray().mid(folder.size());
            records += line.chopped(record->path.size()) + path + '\0';
        } else if (!line.isEmpty() && !records.isEmpty()) {
            constexpr char noText = '\xff'; // in no UTF-8
            records.insert(records.size() - 1, noText);
        }
    }
    return records + answerEnd;
}

QList<CopyProblem> parseFindComplaints(const QString &errors, const QString &root) {
    const QLatin1String prefix("find: ");
    QList<CopyProblem> problems;
    for (const QStringView line : ToolText::lines(errors)) {
        if (!line.startsWith(prefix))
            continue;
        const qsizetype reason = line.lastIndexOf(QLatin1String(": "));
        QString path = line.mid(prefix.size(), reason - prefix.size()).toString();
        path.remove(QLatin1Char('\''));
        if (path.startsWith(root + QLatin1Char('/')))
            path.remove(0, root.size() + 1);
        problems.append({path, line.mid(reason + 2).toString()});
    }
    return problems;
}

} // namespace vantrel::ADBClient
