#pragma once

#include <QMap>
#include <QString>

namespace vantrel {

/// Small values in a text file that people may read and edit: lines "key=value" in UTF-8. Comments (# or ;),
/// the order of the lines, and what stands below a heading other than "[General]" stay as they are. Values
/// are nothing but text of one line. Reads and writes block; one thread at a time.
class PreferencesFile {
public:
    enum class State {
        missing,
        readable,
        damaged,    ///< not such text, or far too large
        unreadable, ///< no regular file, or not ours to read
    };

    /// Reads the file. Nothing is written before save().
    explicit PreferencesFile(QString path);

    /// What the file was when it was read.
    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] const QString &path() const { return m_path; }

    /// The value without blanks around it; empty when not set.
    [[nodiscard]] QString value(const QString &key) const { return m_values.value(key); }
    void setValue(const QString &key, const QString &value);

    /// Reads the file again, below the values that were set since and are not saved yet.
    void reload();
    /// Writes what was set, all of it or nothing, beside what other programs have written meanwhile. A
    /// damaged file is first copied to `path`.damaged. Returns why it could not be done, or an empty text;
    /// the values are kept for the next attempt then.
    [[nodiscard]] QString save();

private:
    [[nodiscard]] QString write(const QString &text) const;

    QString m_path;
    State m_state = State::missing;
    QString m_text; // as read
    QMap<QString, QString> m_values;
    QMap<QString, QString> m_changes; // since the last save
};

} // namespace vantrel
