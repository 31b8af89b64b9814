#pragma once

#include <QString>

namespace vantrel {

/// Why a batch could not even be handed to the HTTP client.
struct TelemetryError {
    enum class Kind { EncodeFailed, InvalidEndpointUrl };

    Kind kind = Kind::EncodeFailed;
    QString error; ///< of EncodeFailed: what is wrong with the batch

    [[nodiscard]] static TelemetryError encodeFailed(const QString &error) {
        return {Kind::EncodeFailed, error};
    }
    [[nodiscard]] static TelemetryError invalidEndpointUrl() { return {Kind::InvalidEndpointUrl, {}}; }

    [[nodiscard]] QString description() const {
        return kind == Kind::EncodeFailed ? QStringLiteral("Failed to encode signal batch: ") + error
                                          : QStringLiteral("Invalid endpoint URL");
    }
    friend bool operator==(const TelemetryError &, const TelemetryError &) = default;
};

} // namespace vantrel
