#pragma once

#include "Records/FileItem.h"
#include "Records/Pane.h"

#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>
#include <stop_token>

namespace vantrel {

struct PhoneReading;

/// Where files are: on this computer, or on the phone of that serial.
struct FilePlace {
    BrowserSide side = BrowserSide::mac;
    QString serial = {}; ///< empty: on this computer, or no phone is there

    friend bool operator==(const FilePlace &, const FilePlace &) = default;
};

/// The pictures of the files that somebody looks at. Main thread; reading and decoding are done on workers.
///
/// Only what is looked at now is read, in the order in which it is asked for: what was scrolled away is no
/// longer waited for, and a run of adb of which nothing is wanted any more is stopped. Pictures are kept in
/// bounded memory by place, path, size and time of their files; a file that has none is not asked twice. A
/// phone that does not answer is left alone until it is heard of again.
class ThumbnailStore : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 mostBytes =
        64'000'000; ///< of all pictures; more only while all of it is looked at

    explicit ThumbnailStore(QObject *parent = nullptr);
    ~ThumbnailStore() override;

    /// The file's picture as it is known now; null when there is none, or none yet.
    [[nodiscard]] QImage picture(const FilePlace &place, const FileItem &item) const;

    /// What a viewer looks at from now on, first things first, in place of what it looked at before; with no
    /// items, nothing. Pictures are wanted with a longest side of about `edge` device pixels.
    void look(const QObject *viewer, const FilePlace &place, const QList<FileItem> &items, int edge);
    /// While copies run, a phone is read by one run of adb at a time, and little of each file.
    void setCopying(bool isCopying);
    /// The phone has answered something else: it may be asked for pictures again.
    void hear(const FilePlace &place);
    /// The desktop is done with these files of this computer, whatever came of it: their pictures are looked
    /// for once more.
    void hearOfDesktop(const QStringList &paths);

Q_SIGNALS:
    /// Of these files of this computer, which are looked at, only another program can make a picture; with
    /// none, of nothing. Each list takes the place of the one before.
    void desktopIsAsked(const QStringList &paths, int edge);
    /// There are pictures now of these files, by their paths.
    void arrived(const FilePlace &place, const QSet<QString> &paths);

private:
    struct Key {
        FilePlace place;
        QString path;
        qint64 size;
        qint64 modified; ///< milliseconds since 1970

        friend bool operator==(const Key &, const Key &) = default;
        friend size_t qHash(const Key &key, size_t seed = 0) {
            return qHashMulti(seed, key.place.serial, key.path, key.size, key.modified);
        }
    };
    /// What is still to be tried for a file.
    enum class Next {
        beginning,
        whole,
        desktop, ///< by another program
        again,   ///< which is done now
        nothing
    };
    struct Entry {
        QImage picture;
        int edge = 0; ///< that it was asked for with
        Next next = Next::beginning;
        mutable quint64 used = 0;
    };
    struct Wish {
        Key key;
        int edge;
    };
    struct PhoneRun {
        FilePlace place;
        QList<Key> keys;
        QList<PhoneReading> readings; ///< of each
        std::stop_source stop;
    };

    [[nodiscard]] static Key keyOf(const FilePlace &place, const FileItem &item);
    [[nodiscard]] static std::optional<PhoneReading> readingOf(const Key &key, Next next);
    [[nodiscard]] bool isOpen(const Wish &wish) const;
    void work();
    void readFromPhones();
    void readFromHere();
    void askDesktop();
    [[nodiscard]] std::shared_ptr<PhoneRun> nextRun(Next stage) const;
    QCoro::Task<> read(std::shared_ptr<PhoneRun> run);
    QCoro::Task<> readHere(Key key, int edge);
    void keep(const Key &key, const Entry &entry);
    void trim();

    QHash<const QObject *, QList<Wish>> m_wishes; ///< of each viewer
    QSet<Key> m_wanted;                           ///< all of them
    QHash<Key, Entry> m_entries;
    qint64 m_bytes = 0; ///< of their pictures
    mutable quint64 m_clock = 0;
    QSet<Key> m_reading; ///< what is being read now
    QList<std::shared_ptr<PhoneRun>> m_runs;
    int m_readingHere = 0; ///< files of this computer
    QStringList m_asked;   ///< of the desktop
    int m_askedEdge = 0;
    QSet<QString> m_silent; ///< phones
    bool m_isCopying = false;
    QTimer m_soon;
};

} // namespace vantrel
