#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

namespace vantrel {

/// A phone for a test: an empty folder that the program's own adb lookup finds as a connected phone, for as
/// long as this object lives. It works through the process's environment, so there is one at a time; make it
/// before anything reads the environment on another thread. Phone paths here are relative to shared storage
/// ("DCIM/a.jpg") or absolute ("/sdcard/DCIM/a.jpg"). What cannot be set up or read ends the test program
/// with a message.
class DemoPhone {
public:
    DemoPhone();
    ~DemoPhone();
    Q_DISABLE_COPY_MOVE(DemoPhone)

    /// The phone's adb.
    [[nodiscard]] static QString adb();
    /// The phone's serial, unless the setting is changed.
    [[nodiscard]] static QString serial();

    /// The folder of this computer that is the phone's shared storage.
    [[nodiscard]] QString root() const;
    /// Where a phone path lies on this computer.
    [[nodiscard]] QString hostPath(const QString &path) const;

    /// Writes a file with the folders above it.
    void write(const QString &path, const QByteArray &contents,
               const std::optional<QDateTime> &modified = std::nullopt) const;
    void makeFolder(const QString &path) const;
    /// Makes a symbolic link; a target beginning with "/" is a phone path.
    void link(const QString &path, const QString &target) const;
    [[nodiscard]] QByteArray read(const QString &path) const;
    [[nodiscard]] bool exists(const QString &path) const;

    /// Changes a setting (demo/README.md has them), also for an adb that is running. "ls.delay" holds for ls
    /// alone.
    void set(const QString &setting, const QByteArray &value) const;
    void set(const QString &setting, const QString &value) const { set(setting, value.toUtf8()); }
    void set(const QString &setting, const char *value) const { set(setting, QByteArray(value)); }
    /// Puts a setting back to its default.
    void reset(const QString &setting) const;
    /// Puts all settings back, and forgets the command lines. No adb may be running.
    void resetAll() const;
    /// Makes a path, and everything below it, answer "Permission denied". May be called for several.
    void deny(const QString &path) const;
    void unplug() const { set(QStringLiteral("state"), "none"); }
    void plug() const { set(QStringLiteral("state"), "device"); }

    /// Plugs another phone in, changes its state, or takes it away with the state "none"; it is listed first.
    void setOther(const QString &serial, const QString &state, const QString &model = {}) const;
    /// Where the storage of another phone lies on this computer.
    [[nodiscard]] QString otherRoot(const QString &serial) const;

    /// Puts a card in, and gives the folder of this computer that it is.
    QString insertCard(const QString &name) const;
    void pullCard(const QString &name) const { set(QStringLiteral("card"), name + QStringLiteral(" gone")); }

    /// The argument list of every adb that was started, in order.
    [[nodiscard]] QList<QStringList> commandLines() const;

private:
    void setEnvironment(const char *name, const QByteArray &value);
    void append(const QString &setting, const QByteArray &escaped) const;

    QTemporaryDir m_folder;
    QMap<QByteArray, std::optional<QByteArray>> m_environmentBefore;
};

} // namespace vantrel
