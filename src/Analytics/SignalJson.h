#pragma once

#include "Analytics/SignalPostBody.h"

#include <QByteArray>
#include <QList>

#include <tl/expected.hpp>

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

/// The service takes dates as text, the cache file holds seconds since 2001-01-01 00:00 UTC; they never mix.
enum class DateForm { network, disk };

/// The signals as a JSON array with the keys in the order of the record. Fails on a floatValue that JSON
/// cannot hold.
[[nodiscard]] tl::expected<QByteArray, TelemetryError> encodeSignals(const QList<SignalPostBody> &batch,
                                                                     DateForm form);

/// Reads what encodeSignals() wrote in the disk form. Nothing when it is anything else: one record that is
/// not complete and of the right types makes the whole text unreadable.
[[nodiscard]] std::optional<QList<SignalPostBody>> decodeSignals(const QByteArray &json);

} // namespace vantrel
