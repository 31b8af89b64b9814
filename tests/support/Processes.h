#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>

#include <unistd.h>

/// What this process holds on to, from /proc.
namespace vantrel::processes {

/// One child that still runs, or has ended and was not waited for.
struct Child {
    pid_t pid;
    QByteArray commandLine; ///< arguments separated by NUL; empty once it has ended
};

inline QByteArray contentsOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The children of all threads.
inline QList<Child> children() {
    QList<Child> list;
    const QString tasks = QStringLiteral("/proc/self/task/");
    for (const QString &thread : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        for (const QByteArray &pid : contentsOf(tasks + thread + QStringLiteral("/children")).split(' ')) {
            if (!pid.isEmpty())
                list.append({pid.toInt(),
                             contentsOf(QStringLiteral("/proc/%1/cmdline").arg(QString::fromLatin1(pid)))});
        }
    }
    return list;
}

/// How many children run whose command line holds the word.
inline qsizetype childrenCalled(const char *word) {
    const QList<Child> all = children();
    return std::count_if(all.begin(), all.end(),
                         [&](const Child &one) { return one.commandLine.contains(word); });
}

inline qsizetype openDescriptors() {
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

} // namespace vantrel::processes
