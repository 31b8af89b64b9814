#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace vantrel {

/// Sets variables of the environment, or takes away those without a value, until it goes.
class Environment {
public:
    using Values = QList<std::pair<const char *, std::optional<QByteArray>>>;
    explicit Environment(const Values &values) {
        for (const auto &[name, value] : values) {
            m_before.append(
                {name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt});
            set(name, value);
        }
    }
    ~Environment() {
        for (const auto &[name, value] : m_before)
            set(name, value);
    }
    Q_DISABLE_COPY_MOVE(Environment)

    static void set(const char *name, const std::optional<QByteArray> &value) {
        value ? qputenv(name, *value) : qunsetenv(name);
    }

private:
    Values m_before;
};

} // namespace vantrel
