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
    /// Is there, and yet cannot be used, for a reason that adb calls this; false when this phone can't.
    [[nodiscard]] virtual bool beInTrouble(const QString &state) = 0;

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

    /// The way to a file whose copy is worth going on with; empty when this phone cannot leave by itself.
    [[nodiscard]] virtual QStringList film() const = 0;

    /// How many MB a second each copy makes, so that one can be seen in the middle; 0: as fast as they go.
    virtual void setSpeed(double megabytes) = 0;
    /// Lets every copy of the file fail, until allow(); false when this phone can't.
    [[nodiscard]] virtual bool refuse(const QString &path) = 0;
    virtual void allow() = 0;
    /// Leaves, where film() is something; plug() brings it back.
    virtual void unplug() = 0;

    /// The bytes of a file on the phone, read past the program under test.
    [[nodiscard]] virtual QByteArray read(const QString &path) = 0;
};

} // namespace vantrel::tour
