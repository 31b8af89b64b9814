#pragma once

#include <QString>

#include <tl/expected.hpp>

namespace vantrel {

/// A failure of the device bridge, with the text that the user reads.
class ADBError {
public:
    enum class Kind {
        executionFailed, ///< a tool could not be started, failed, or was stopped; carries the text
        parseFailed,     ///< a tool's output made no sense; carries the text
        adbNotFound,     ///< there is no usable adb
        noDevice,        ///< no phone is ready
        noAnswer,        ///< nothing came for as long as an answer is waited for
    };

    [[nodiscard]] static ADBError executionFailed(const QString &message) {
        return {Kind::executionFailed, message};
    }
    [[nodiscard]] static ADBError parseFailed(const QString &message) { return {Kind::parseFailed, message}; }
    [[nodiscard]] static ADBError adbNotFound() { return {Kind::adbNotFound, {}}; }
    [[nodiscard]] static ADBError noDevice() { return {Kind::noDevice, {}}; }
    [[nodiscard]] static ADBError noAnswer() { return {Kind::noAnswer, {}}; }

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// The user-facing description.
    [[nodiscard]] QString errorDescription() const;

    friend bool operator==(const ADBError &, const ADBError &) = default;

private:
    ADBError(Kind kind, QString message) : m_kind(kind), m_message(std::move(message)) {}

    Kind m_kind;
    QString m_message;
};

/// A value, or why the phone did not give one. Typed, so that nothing is lost on the way between threads.
template <class T>
using ADBResult = tl::expected<T, ADBError>;

} // namespace vantrel
