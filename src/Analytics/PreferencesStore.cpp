#include "Analytics/PreferencesStore.h"

#include <QFile>
#include <QMap>
#include <QMutex>
#include <QSettings>

namespace vantrel {

namespace {

/// QSettings turns "@Variant(…)" into any object of any size. Nothing of the kind is ever stored here: a file
/// that holds it is damaged, or somebody's trick, and is taken away.
void removeUnlessPlain(const QString &path) {
    constexpr qint64 largest = 1024 * 1024;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray text = file.read(largest + 1);
    if (text.size() > largest || text.contains("@Variant(") || text.contains("@DataStream("))
        file.remove();
}

/// QSettings alone would rewrite the file after every change, and the session's length changes every second.
class PreferencesDomain final : public PreferencesStore {
public:
    explicit PreferencesDomain(QString domain) : m_domain(std::move(domain)) {
        removeUnlessPlain(QSettings(QSettings::IniFormat, QSettings::UserScope, m_domain).fileName());
        const QSettings settings(QSettings::IniFormat, QSettings::UserScope, m_domain);
        for (const QString &key : settings.allKeys())
            m_values.insert(key, settings.value(key));
    }

    QVariant value(const QString &key) const override {
        const QMutexLocker locker(&m_mutex);
        return m_values.value(key);
    }

    void setValue(const QString &key, const QVariant &value) override {
        const QMutexLocker locker(&m_mutex);
        m_values.insert(key, value);
        m_changes.insert(key, value);
    }

    void flush() override {
        const QMap<QString, QVariant> changes = [this] {
            const QMutexLocker locker(&m_mutex);
            return std::exchange(m_changes, {});
        }();
        QSettings settings(QSettings::IniFormat, QSettings::UserScope, m_domain);
        for (auto it = changes.cbegin(); it != changes.cend(); ++it)
            settings.setValue(it.key(), it.value());
        settings.sync();
    }

private:
    const QString m_domain;
    mutable QMutex m_mutex;
    QMap<QString, QVariant> m_values;
    QMap<QString, QVariant> m_changes; // since the last flush
};

} // namespace

std::shared_ptr<PreferencesStore> preferencesDomain(const QString &domain) {
    return std::make_shared<PreferencesDomain>(domain);
}

} // namespace vantrel
