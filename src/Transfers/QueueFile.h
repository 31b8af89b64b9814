#pragma once

#include "Records/QueueItem.h"

#include <QList>
#include <QString>

#include <memory>
#include <mutex>
#include <vector>

class QLockFile;

namespace vantrel {

/// Where the copies that are not finished are kept between two starts of the program: a JSON file of a folder
/// of the user's. Each running program has a file of its own, told by a lock; what a program that has ended
/// left in another one is taken over. Everything blocks; any thread.
class QueueFile {
public:
    /// More entries than this are not kept, and no larger file is read.
    static constexpr qsizetype mostEntries = 100'000;
    static constexpr qint64 largestFile = 128'000'000;

    struct Contents {
        QList<QueueItem> entries; ///< paused
        QString problem;          ///< what the user has to know, as a sentence, or empty
        bool mayWrite = true;     ///< otherwise nothing is kept from now on, and the problem says why
    };

    /// The folder that a user's file is kept in.
    [[nodiscard]] static QString userFolder();

    /// Nothing happens yet. The folder need not be there.
    explicit QueueFile(QString folder);
    ~QueueFile();
    Q_DISABLE_COPY_MOVE(QueueFile)

    /// Takes a file for this program and reads what is kept there. A file that cannot be understood is put
    /// aside. To be called once, first.
    [[nodiscard]] Contents open();
    /// Replaces what is kept. Why that could not be done, as a sentence, or empty. A list with a lower number
    /// than one that was written is an older one, and is dropped.
    QString write(const QList<QueueItem> &unfinished, quint64 number);

    // -- The same for a worker
    [[nodiscard]] static Contents openOn(const std::shared_ptr<QueueFile> &file) { return file->open(); }
    [[nodiscard]] static QString writeOn(const std::shared_ptr<QueueFile> &file,
                                         const QList<QueueItem> &unfinished, quint64 number) {
        return file->write(unfinished, number);
    }

private:
    void read(const QString &path, Contents &contents);
    [[nodiscard]] bool putAside(const QString &path, const QString &what, Contents &contents);

    QString m_folder;
    std::mutex m_guard;
    QString m_path;              ///< empty when there is no place to keep anything
    bool m_isUnreadable = false; ///< then it is left as it is
    QString m_problem;           ///< why nothing can be kept, or empty
    quint64 m_newest = 0;        ///< number of what was written last
    std::vector<std::unique_ptr<QLockFile>> m_locks;
    QStringList m_takenOver; ///< files of other programs, until what they hold is written here
};

} // namespace vantrel
