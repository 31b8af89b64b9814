#pragma once

#include "Records/FileItem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace vantrel {

/// What a file of this computer holds, or "(missing)".
inline QByteArray contents(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

/// Writes a file of this computer with the folders above it.
inline void write(const QString &path, const QByteArray &bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

inline QStringList namesOf(const QList<FileItem> &items) {
    QStringList names;
    for (const FileItem &item : items)
        names.append(item.name);
    return names;
}

} // namespace vantrel
