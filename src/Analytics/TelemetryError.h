#pragma once

#include <QString>

namespace vantrel {

/// Why a batch could not even be handed to the HTTP client.
struct TelemetryError {
    QString description;

    [[nodiscard]] static TelemetryError encodeFailed(const QString &error) {
        return {QStringLiteral("Failed to encode signal batch: ") + error};
    }
    [[nodiscard]] static TelemetryError invalidEndpointUrl() {
        return {QStringLiteral("Invalid endpoint URL")};
    }
};

} // namespace vantrel
