#include "State/Details.h"

#include "ADB/ADBClient.h"
#include "ADB/PhoneCopies.h"
#include "Records/ByteSum.h"
#include "Records/FileSizeFormat.h"
#include "Worker/Worker.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace vantrel {

namespace {

/// What is found out of one entry by itself.
struct Looked {
    QString kind;
    QString linkTarget;
    std::optional<QDateTime> modified;
    std::optional<QDateTime> created;
    QString problem;
};

/// What is found out of folders.
struct Counted {
    std::optional<FolderContents> contents;
    QString problem;
};

bool mayBePicture(const QString &name) {
    return QMimeDatabase()
        .mimeTypeForFile(name, QMimeDatabase::MatchExtension)
        .name()
        .startsWith(QLatin1String("image/"));
}

QString kindOf(const QString &name, bool isDirectory) {
    if (isDirectory)
        return QStringLiteral("Folder");
    const QMimeType type = QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension);
    return type.isDefault() ? QStringLiteral("File") : type.comment();
}

Looked lookHere(const QString &path, const QString &name, bool isDirectory) {
    const QFileInfo info(path);
    if (info.isSymLink())
        return {
            QStringLiteral("Link"), info.symLinkTarget(), info.fileTime(QFile::FileModificationTime), {}, {}};
    if (!info.exists())
        return {kindOf(name, isDirectory), {}, {}, {}, QStringLiteral("It is no longer there.")};
    const QDateTime created = info.birthTime();
    return {kindOf(name, isDirectory),
            {},
            info.lastModified(),
            created.isValid() ? std::optional(created) : std::nullopt,
            {}};
}

Looked lookOnPhone(const QString &serial, const QString &path, const QString &name, bool isDirectory,
                   const std::stop_token &stop) {
    Looked looked{kindOf(name, isDirectory), {}, {}, {}, {}};
    const auto facts = ADBClient::fetchFacts(serial, {path}, stop);
    if (!facts)
        looked.problem = facts.error().errorDescription();
    else if (const auto entry = facts->constFind(path); entry != facts->constEnd())
        looked.modified = QDateTime::fromSecsSinceEpoch(entry->modified);
    else
        looked.problem = QStringLiteral("It is no longer there.");
    return looked;
}

Counted countHere(const QStringList &paths, const std::stop_token &stop) {
    constexpr qint64 most = 10'000'000; // entries; who has more waits long enough
    namespace fs = std::filesystem;
    FolderContents contents;
    std::vector<fs::path> open;
    for (const QString &path : paths)
        open.emplace_back(QFile::encodeName(path).toStdString());
    while (!open.empty() && contents.isWhole) {
        const fs::path folder = std::move(open.back());
        open.pop_back();
        std::error_code error;
        for (fs::directory_iterator entries(folder, error);
             !error && entries != fs::directory_iterator() && contents.isWhole; entries.increment(error)) {
            if (stop.stop_requested())
                return {};
            struct stat facts {};
            if (::lstat(entries->path().c_str(), &facts) != 0)
                continue; // it has gone
            if (S_ISDIR(facts.st_mode)) {
                ++contents.folders;
                open.push_back(entries->path());
            } else if (S_ISREG(facts.st_mode)) {
                ++contents.files;
                contents.bytes = byteSum(contents.bytes, facts.st_size);
            }
            contents.isWhole = contents.files + contents.folders < most;
        }
        contents.unreadable += error ? 1 : 0;
    }
    return {contents, {}};
}

Counted countOnPhone(const QString &serial, const QStringList &paths, const std::stop_token &stop) {
    FolderContents contents;
    for (const QString &path : paths) {
        const auto tree = ADBClient::fetchTree(serial, path, stop);
        if (!tree)
            return {{}, tree.error().errorDescription()};
        for (const TreeEntry &entry : tree->entries) {
            contents.folders += entry.kind == TreeEntry::Kind::folder && !entry.path.isEmpty() ? 1 : 0;
            contents.files += entry.kind == TreeEntry::Kind::file ? 1 : 0;
            contents.bytes = byteSum(contents.bytes, entry.sizeBytes);
        }
        contents.unreadable += tree->unreadable.size() + tree->leftOut.size();
    }
    return {contents, {}};
}

/// Where cameras note what they have to say.
constexpr qint64 photoBeginning = qint64{256} * 1024;

PhotoFacts photoHere(const QString &path, const QString &name, ReadPhotoFacts read) {
    QFile file(path);
    // What is no file of its own, as a pipe, might never answer.
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? read(file.read(photoBeginning), name)
                                                                      : PhotoFacts();
}

PhotoFacts photoOnPhone(const QString &serial, const QString &path, const QString &name, qint64 length,
                        ReadPhotoFacts read, const std::stop_token &stop) {
    if (!mayBePicture(name) || length == 0)
        return {};
    const auto bytes = ADBClient::readBeginnings(serial, {{path, length}}, stop);
    return bytes ? read(bytes->value(0), name) : PhotoFacts(); // they are worth no complaint
}

QString grouped(qint64 number) {
    QLocale locale;
    locale.setNumberOptions(QLocale::DefaultNumberOptions); // with separators of thousands everywhere
    return locale.toString(number);
}

QString counted(qint64 number, const QString &noun) {
    return grouped(number) % QLatin1Char(' ') % noun % (number == 1 ? QString() : QStringLiteral("s"));
}

/// Rounded as in the rows, and exact where that differs.
QString sizeText(qint64 bytes) {
    const QString exact = counted(bytes, QStringLiteral("byte"));
    const QString rounded = formatFileSize(bytes);
    constexpr qint64 smallest = 1000; // that is rounded
    return bytes < smallest ? exact : QString(rounded % QStringLiteral(" (") % exact % QLatin1Char(')'));
}

QString dateText(const QDateTime &date) {
    const QLocale locale;
    const QDateTime local = date.toLocalTime();
    QString format = locale.timeFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("ss")))
        format.replace(QLatin1String("mm"), QLatin1String("mm:ss"));
    return locale.toString(local, QStringLiteral("MMM d, yyyy")) % QStringLiteral(", ") %
           locale.toString(local.time(), format);
}

} // namespace

Details::Details(const QList<FileItem> &items, const std::optional<Phone> &phone, ReadPhotoFacts readPhoto)
    : m_items(items), m_phone(phone), m_readPhoto(readPhoto) {
    m_isCounting = !folders().isEmpty();
    learn();
}

Details::~Details() {
    m_stop.request_stop();
}

/// Those that can be asked about.
QStringList Details::folders() const {
    QStringList paths;
    for (const FileItem &item : m_items) {
        if (item.isDirectory && item.isNameExact)
            paths.append(item.path);
    }
    return paths;
}

QCoro::Task<> Details::learn() {
    const std::stop_token stop = m_stop.get_token();
    const FileItem item = m_items.first();
    if (m_items.size() == 1 && item.isNameExact) {
        Looked looked;
        if (m_phone)
            looked = co_await Background::run(this, &lookOnPhone, m_phone->serial, item.path, item.name,
                                              item.isDirectory, stop);
        else
            looked = co_await Background::run(this, &lookHere, item.path, item.name, item.isDirectory);
        m_kind = looked.kind;
        m_linkTarget = looked.linkTarget;
        m_modified = looked.modified;
        m_created = looked.created;
        m_problem = looked.problem;
        Q_EMIT changed();
    }
    if (m_items.size() == 1 && !item.isDirectory && item.isNameExact && m_readPhoto && m_problem.isEmpty()) {
        const qint64 length = std::min(item.sizeBytes.value_or(0), photoBeginning);
        if (m_phone)
            m_photo = co_await Background::run(this, &photoOnPhone, m_phone->serial, item.path, item.name,
                                               length, m_readPhoto, stop);
        else
            m_photo = co_await Background::run(this, &photoHere, item.path, item.name, m_readPhoto);
        Q_EMIT changed();
    }
    if (m_isCounting && m_problem.isEmpty()) {
        const QStringList paths = folders();
        Counted found;
        if (m_phone)
            found = co_await Background::run(this, &countOnPhone, m_phone->serial, paths, stop);
        else
            found = co_await Background::run(this, &countHere, paths, stop);
        m_contents = found.contents;
        m_problem = found.problem;
    }
    m_isCounting = false;
    Q_EMIT changed();
}

QString Details::title() const {
    return m_items.size() == 1 ? m_items.first().name : counted(m_items.size(), QStringLiteral("item"));
}

/// The folder that all of them lie in; empty where there are several.
QString Details::place() const {
    const auto folderOf = [](const FileItem &item) {
        const QString folder = item.path.left(item.path.lastIndexOf(QLatin1Char('/')));
        return folder.isEmpty() ? QStringLiteral("/") : folder;
    };
    const QString first = folderOf(m_items.first());
    const bool isOne = std::all_of(m_items.begin(), m_items.end(),
                                   [&](const FileItem &item) { return folderOf(item) == first; });
    return isOne ? first : QString();
}

QList<Details::Fact> Details::facts() const {
    QList<Fact> facts;
    const auto tell = [&facts](const char *label, const QString &value) {
        facts.append({QString::fromLatin1(label), value});
    };
    const bool isOne = m_items.size() == 1;
    const FileItem &first = m_items.first();
    const bool hasFolders = std::any_of(m_items.begin(), m_items.end(), std::mem_fn(&FileItem::isDirectory));

    QStringList selected;
    if (!isOne) {
        const auto folderCount =
            std::count_if(m_items.begin(), m_items.end(), std::mem_fn(&FileItem::isDirectory));
        if (folderCount > 0)
            selected.append(counted(folderCount, QStringLiteral("folder")));
        if (folderCount < m_items.size())
            selected.append(counted(m_items.size() - folderCount, QStringLiteral("file")));
    }
    QString contents = m_isCounting ? QStringLiteral("Counting…") : QString();
    const QString more = m_contents && !m_contents->isWhole ? QStringLiteral("More than ") : QString();
    if (m_contents) {
        contents = more % counted(m_contents->files, QStringLiteral("file")) % QStringLiteral(", ") %
                   counted(m_contents->folders, QStringLiteral("folder"));
        if (m_contents->unreadable > 0)
            contents +=
                QStringLiteral(", ") % grouped(m_contents->unreadable) % QStringLiteral(" could not be read");
    }
    QString size;
    if (!hasFolders || m_contents) {
        qint64 bytes = m_contents ? m_contents->bytes : 0;
        for (const FileItem &item : m_items)
            bytes = byteSum(bytes, item.isDirectory ? 0 : item.sizeBytes.value_or(0));
        size = more % sizeText(bytes);
    }
    const auto modified = m_modified ? m_modified : first.modifiedAt;
    const QString dimensions =
        m_photo.size.isEmpty()
            ? QString()
            : QString(grouped(m_photo.size.width()) % QStringLiteral(" × ") % grouped(m_photo.size.height()));
    tell("Kind", m_kind);
    tell("Leads to", m_linkTarget);
    tell("Where", place());
    tell("Phone", m_phone ? m_phone->name : QString());
    tell("Selected", selected.join(QStringLiteral(", ")));
    tell("Contents", contents);
    tell("Size", size);
    tell("Dimensions", dimensions);
    tell("Camera", m_photo.camera);
    tell("Modified", isOne && modified ? dateText(*modified) : QString());
    tell("Created", m_created ? dateText(*m_created) : QString());
    return facts;
}

QString Details::text() const {
    QStringList lines{title()};
    for (const Fact &fact : facts()) {
        if (!fact.value.isEmpty())
            lines.append(fact.label % QStringLiteral(": ") % fact.value);
    }
    if (!m_problem.isEmpty())
        lines.append(m_problem);
    return lines.join(QLatin1Char('\n'));
}

} // namespace vantrel
