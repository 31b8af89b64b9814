#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vantrel::tour {

/// The phone that the tour is taken on. Until plug() there is none to be found.
class TourPhone {
public:
    virtual ~TourPhone() = default;

    virtual void plug() = 0;

    /// The way to the folder that the tour copies from and to: the title of a shortcut, then the names of
    /// folders.
    [[nodiscard]] virtual QStringList folder() const = 0;
    /// The path of that folder.
    [[nodiscard]] virtual QString folderPath() const = 0;
    /// The names of a few files of it that take a while to copy.
    [[nodiscard]] virtual QStringList files() const = 0;
    /// The names of more files of it than there is room for in the queue.
    [[nodiscard]] virtual QStringList manyFiles() const = 0;
    /// A word that names of the folder contain, but not all.
    [[nodiscard]] virtual QString word() const = 0;

    /// Makes copies so slow that one can be seen in the middle, or as fast as they go.
    virtual void setSlow(bool slow) = 0;
    /// Lets every copy of the file fail; false when this phone can't.
    [[nodiscard]] virtual bool refuse(const QString &path) = 0;

    /// The bytes of a file on the phone, read past the program under test.
    [[nodiscard]] virtual QByteArray read(const QString &path) = 0;
};

} // namespace vantrel::tour
