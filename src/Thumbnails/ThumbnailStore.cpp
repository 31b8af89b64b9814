#include "Thumbnails/ThumbnailStore.h"

#include "Thumbnails/LocalPicture.h"
#include "Thumbnails/MediaKind.h"
#include "Thumbnails/PhonePictures.h"
#include "Worker/Worker.h"

#include <QThread>

#include <algorithm>

namespace vantrel {

namespace {

// Of a file of the phone, in bytes. A camera's own small picture is in the first 64 KiB, behind a few words.
constexpr qint64 photoBeginning = 80'000;
constexpr qint64 otherBeginning = 256'000;
constexpr qint64 smallFile = 256'000;
constexpr qint64 largestWhole = 4'000'000;

// Of one run of adb: it is stopped when nothing of it is looked at any more, and shows nothing before its
// end.
constexpr qsizetype mostFiles = 16;
constexpr qint64 mostRead = 4'000'000;

constexpr int phoneEdge = 512;

} // namespace

ThumbnailStore::ThumbnailStore(QObject *parent) : QObject(parent) {
    // So that what flies past is not read. It does not wait for rest: who scrolls slowly looks.
    constexpr std::chrono::milliseconds delay{40};
    m_soon.setSingleShot(true);
    m_soon.setInterval(delay);
    m_soon.callOnTimeout(this, &ThumbnailStore::work);
}

ThumbnailStore::~ThumbnailStore() {
    for (const auto &run : m_runs)
        run->stop.request_stop();
}

ThumbnailStore::Key ThumbnailStore::keyOf(const FilePlace &place, const FileItem &item) {
    return {place, item.path, item.sizeBytes.value_or(0),
            item.modifiedAt ? item.modifiedAt->toMSecsSinceEpoch() : 0};
}

QImage ThumbnailStore::picture(const FilePlace &place, const FileItem &item) const {
    if (m_entries.isEmpty() || item.isDirectory)
        return {};
    const auto entry = m_entries.constFind(keyOf(place, item));
    if (entry == m_entries.constEnd())
        return {};
    entry->used = ++m_clock;
    return entry->picture;
}

void ThumbnailStore::look(const QObject *viewer, const FilePlace &place, const QList<FileItem> &items,
                          int edge) {
    QList<Wish> wishes;
    const bool isPossible = place.side == BrowserSide::mac || !place.serial.isEmpty();
    for (const FileItem &item : items) {
        if (isPossible && !item.isDirectory && item.isNameExact && item.sizeBytes.value_or(0) > 0 &&
            mediaKindOf(item.name) != MediaKind::none)
            wishes.append({keyOf(place, item), edge});
    }
    if (!m_wishes.contains(viewer))
        connect(viewer, &QObject::destroyed, this, [this, viewer] {
            m_wishes.remove(viewer);
            work();
        });
    m_wishes.insert(viewer, wishes);
    if (!m_soon.isActive())
        m_soon.start();
}

void ThumbnailStore::setCopying(bool isCopying) {
    m_isCopying = isCopying;
    work();
}

void ThumbnailStore::hear(const FilePlace &place) {
    if (m_silent.remove(place.serial))
        work();
}

void ThumbnailStore::hearOfDesktop(const QStringList &paths) {
    const QSet<QString> done(paths.begin(), paths.end());
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        if (entry->next == Next::desktop && done.contains(entry.key().path))
            entry->next = Next::again;
    }
    work();
}

/// Whether something is to be read for it that is not being read.
bool ThumbnailStore::isOpen(const Wish &wish) const {
    if (m_reading.contains(wish.key))
        return false;
    const auto entry = m_entries.constFind(wish.key);
    if (entry == m_entries.constEnd())
        return true;
    const bool isSmall =
        wish.key.place.side == BrowserSide::mac && !entry->picture.isNull() && entry->edge < wish.edge;
    return (entry->next != Next::nothing && entry->next != Next::desktop) || isSmall;
}

void ThumbnailStore::work() {
    m_wanted.clear();
    for (const QList<Wish> &wishes : std::as_const(m_wishes)) {
        for (const Wish &wish : wishes)
            m_wanted.insert(wish.key);
    }
    for (const auto &run : std::as_const(m_runs)) {
        if (std::none_of(run->keys.begin(), run->keys.end(),
                         [this](const Key &key) { return m_wanted.contains(key); }))
            run->stop.request_stop();
    }
    readFromPhones();
    readFromHere();
    if (m_readingHere == 0) // then it is known for what it is needed
        askDesktop();
}

// -- The phone

/// How a file is read at a stage; nothing when that has no chance.
std::optional<PhoneReading> ThumbnailStore::readingOf(const Key &key, Next next) {
    const MediaKind kind = mediaKindOf(key.path);
    const bool isPicture = kind == MediaKind::picture || kind == MediaKind::photo;
    if (!isReadable(kind))
        return std::nullopt;
    if (next == Next::beginning && key.size <= smallFile)
        return PhoneReading{key.path, key.size, Extent::whole};
    if (next == Next::beginning && kind != MediaKind::picture)
        return PhoneReading{key.path, kind == MediaKind::photo ? photoBeginning : otherBeginning,
                            Extent::beginning};
    if (next == Next::whole && isPicture && key.size <= largestWhole)
        return PhoneReading{key.path, key.size, Extent::whole};
    return std::nullopt;
}

/// The first files that are open at a stage, all of one phone.
std::shared_ptr<ThumbnailStore::PhoneRun> ThumbnailStore::nextRun(Next stage) const {
    auto run = std::make_shared<PhoneRun>();
    qint64 bytes = 0;
    for (const QList<Wish> &wishes : std::as_const(m_wishes)) {
        for (const Wish &wish : wishes) {
            const FilePlace &place = wish.key.place;
            if (place.side != BrowserSide::android || m_silent.contains(place.serial) || !isOpen(wish) ||
                (!run->keys.isEmpty() && run->place != place) || m_entries.value(wish.key).next != stage)
                continue;
            const auto reading = readingOf(wish.key, stage);
            if (!reading)
                continue;
            bytes += reading->length;
            if (!run->keys.isEmpty() && (run->keys.size() == mostFiles || bytes > mostRead))
                return run;
            run->place = place;
            run->keys.append(wish.key);
            run->readings.append(*reading);
        }
    }
    return run;
}

void ThumbnailStore::readFromPhones() {
    // What cannot be had at a stage goes on to the next one at once.
    for (const QList<Wish> &wishes : std::as_const(m_wishes)) {
        for (const Wish &wish : wishes) {
            if (wish.key.place.side != BrowserSide::android)
                continue;
            Entry entry = m_entries.value(wish.key);
            const Next before = entry.next;
            while (entry.next != Next::nothing && !readingOf(wish.key, entry.next))
                entry.next = entry.next == Next::beginning ? Next::whole : Next::nothing;
            if (entry.next != before)
                keep(wish.key, entry);
        }
    }
    const qsizetype mostRuns = m_isCopying ? 1 : 2;
    while (m_runs.size() < mostRuns) {
        auto run = nextRun(Next::beginning);
        if (run->keys.isEmpty() && !m_isCopying)
            run = nextRun(Next::whole);
        if (run->keys.isEmpty())
            return;
        read(run);
    }
}

QCoro::Task<> ThumbnailStore::read(std::shared_ptr<PhoneRun> run) {
    m_runs.append(run);
    for (const Key &key : std::as_const(run->keys))
        m_reading.insert(key);
    const std::stop_token stop = run->stop.get_token();
    const auto answer =
        co_await Background::run(this, &phonePictures, run->place.serial, run->readings, phoneEdge, stop);
    m_runs.removeOne(run);
    for (const Key &key : std::as_const(run->keys))
        m_reading.remove(key);
    QSet<QString> paths;
    for (qsizetype i = 0; i < answer.pictures.size(); ++i) {
        const Key &key = run->keys.at(i);
        const QImage &picture = answer.pictures.at(i);
        const bool mayGoOn = picture.isNull() && run->readings.at(i).extent == Extent::beginning;
        keep(key, {picture, phoneEdge, mayGoOn ? Next::whole : Next::nothing});
        if (!picture.isNull())
            paths.insert(key.path);
    }
    if (!answer.isAnswered && !stop.stop_requested()) // it is asked again when somebody hears of it
        m_silent.insert(run->place.serial);
    if (!paths.isEmpty())
        Q_EMIT arrived(run->place, paths);
    work();
}

// -- This computer

void ThumbnailStore::readFromHere() {
    // The window wants to be painted meanwhile.
    const int mostHere = std::clamp(QThread::idealThreadCount(), 1, 4);
    for (const QList<Wish> &wishes : std::as_const(m_wishes)) {
        for (const Wish &wish : wishes) {
            if (m_readingHere >= mostHere)
                return;
            if (wish.key.place.side == BrowserSide::mac && isOpen(wish))
                readHere(wish.key, wish.edge);
        }
    }
}

QCoro::Task<> ThumbnailStore::readHere(Key key, int edge) {
    ++m_readingHere;
    m_reading.insert(key);
    const QImage picture = co_await Background::run(this, &localPicture, key.path, edge);
    --m_readingHere;
    m_reading.remove(key);
    const Entry before = m_entries.value(key); // a smaller picture is better than none
    const bool isOver =
        !picture.isNull() || before.next == Next::again || !mayBeReadElsewhere(mediaKindOf(key.path));
    keep(key, {picture.isNull() ? before.picture : picture, edge, isOver ? Next::nothing : Next::desktop});
    if (!picture.isNull())
        Q_EMIT arrived(key.place, {key.path});
    work();
}

void ThumbnailStore::askDesktop() {
    QStringList paths;
    int edge = 0;
    for (const QList<Wish> &wishes : std::as_const(m_wishes)) {
        for (const Wish &wish : wishes) {
            if (wish.key.place.side != BrowserSide::mac || m_entries.value(wish.key).next != Next::desktop ||
                paths.contains(wish.key.path))
                continue;
            paths.append(wish.key.path);
            edge = std::max(edge, wish.edge);
        }
    }
    if (std::exchange(m_asked, paths) != paths || std::exchange(m_askedEdge, edge) != edge)
        Q_EMIT desktopIsAsked(paths, edge);
}

// -- What is kept

void ThumbnailStore::keep(const Key &key, const Entry &entry) {
    Entry &kept = m_entries[key];
    m_bytes += entry.picture.sizeInBytes() - kept.picture.sizeInBytes();
    kept = entry;
    kept.used = ++m_clock;
    trim();
}

/// Forgets what nobody has seen for longest, down to some room; never what is looked at.
void ThumbnailStore::trim() {
    constexpr qsizetype mostEntries = 20'000;
    if (m_bytes <= mostBytes && m_entries.size() <= mostEntries)
        return;
    QList<std::pair<quint64, Key>> ages;
    for (auto entry = m_entries.constBegin(); entry != m_entries.constEnd(); ++entry) {
        if (!m_wanted.contains(entry.key()))
            ages.append({entry->used, entry.key()});
    }
    std::sort(ages.begin(), ages.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    for (const auto &[used, key] : std::as_const(ages)) {
        if (m_bytes <= mostBytes * 3 / 4 && m_entries.size() <= mostEntries * 3 / 4)
            break;
        m_bytes -= m_entries.take(key).picture.sizeInBytes();
    }
}

} // namespace vantrel
