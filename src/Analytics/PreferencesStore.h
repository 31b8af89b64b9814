#pragma once

#include <QString>
#include <QVariant>

#include <memory>

namespace vantrel {

/// Small values that outlive the program. Any thread.
class PreferencesStore {
public:
    virtual ~PreferencesStore() = default;

    /// The value, or an invalid one.
    [[nodiscard]] virtual QVariant value(const QString &key) const = 0;
    /// Takes effect for value() at once, and for the next run of the program with the next flush().
    virtual void setValue(const QString &key, const QVariant &value) = 0;
    /// Writes what has changed to disk; blocks. Values that cannot be written are kept for this run alone.
    virtual void flush() = 0;
};

/// The preferences in the user's configuration directory, in the file `domain`.ini. Reads it; blocks.
[[nodiscard]] std::shared_ptr<PreferencesStore> preferencesDomain(const QString &domain);

} // namespace vantrel
