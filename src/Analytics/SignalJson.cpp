#include "Analytics/SignalJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <array>
#include <cmath>

namespace vantrel {

namespace {

constexpr qint64 referenceDate = 978'307'200'000; // 2001-01-01 00:00 UTC, in milliseconds since 1970

// QJsonObject sorts its keys, and the record's order is part of the format: so the text is put together here.
void append(QByteArray &json, QByteArrayView key, const QByteArray &value) {
    if (!json.endsWith('{'))
        json += ',';
    json.append('"').append(key).append("\":").append(value);
}

QByteArray quoted(const QString &text) {
    return QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact).chopped(1).sliced(1);
}

QByteArray object(const SignalParameters &parameters) {
    QJsonObject json;
    for (auto it = parameters.cbegin(); it != parameters.cend(); ++it)
        json.insert(it.key(), it.value());
    return QJsonDocument(json).toJson(QJsonDocument::Compact);
}

QByteArray date(const QDateTime &moment, DateForm form) {
    if (form == DateForm::disk) {
        const qint64 milliseconds = moment.toMSecsSinceEpoch() - referenceDate;
        return QByteArray::number(double(milliseconds) / 1000.0, 'f', QLocale::FloatingPointShortest);
    }
    return quoted(moment.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'+0000'")));
}

QByteArray encode(const SignalPostBody &body, DateForm form) {
    QByteArray json = "{";
    append(json, "receivedAt", date(body.receivedAt, form));
    append(json, "appID", quoted(body.appID));
    append(json, "clientUser", quoted(body.clientUser));
    append(json, "sessionID", quoted(body.sessionID));
    append(json, "type", quoted(body.type));
    if (body.floatValue)
        append(json, "floatValue", QByteArray::number(*body.floatValue, 'g', QLocale::FloatingPointShortest));
    append(json, "payload", object(body.payload));
    append(json, "isTestMode", quoted(body.isTestMode));
    return json + '}';
}

std::optional<SignalPostBody> decode(const QJsonObject &json) {
    const QJsonValue receivedAt = json[QStringLiteral("receivedAt")];
    if (!receivedAt.isDouble() || std::abs(receivedAt.toDouble()) > 1e11)
        return std::nullopt;
    SignalPostBody body;
    body.receivedAt =
        QDateTime::fromMSecsSinceEpoch(qRound64(receivedAt.toDouble() * 1000.0) + referenceDate, Qt::UTC);

    const std::array texts{std::pair("appID", &body.appID), std::pair("clientUser", &body.clientUser),
                           std::pair("sessionID", &body.sessionID), std::pair("type", &body.type),
                           std::pair("isTestMode", &body.isTestMode)};
    for (const auto &[key, field] : texts) {
        const QJsonValue value = json[QLatin1String(key)];
        if (!value.isString())
            return std::nullopt;
        *field = value.toString();
    }

    const QJsonValue floatValue = json[QStringLiteral("floatValue")];
    if (floatValue.isDouble())
        body.floatValue = floatValue.toDouble();
    else if (!floatValue.isUndefined() && !floatValue.isNull())
        return std::nullopt;

    if (!json[QStringLiteral("payload")].isObject())
        return std::nullopt;
    const QJsonObject payload = json[QStringLiteral("payload")].toObject();
    for (auto it = payload.begin(); it != payload.end(); ++it) {
        if (!it->isString())
            return std::nullopt;
        body.payload.insert(it.key(), it->toString());
    }
    return body;
}

} // namespace

tl::expected<QByteArray, TelemetryError> encodeSignals(const QList<SignalPostBody> &batch, DateForm form) {
    QByteArray json = "[";
    for (const SignalPostBody &body : batch) {
        if (body.floatValue && !std::isfinite(*body.floatValue))
            return tl::unexpected(TelemetryError::encodeFailed(
                QStringLiteral("floatValue of %1 is not a finite number").arg(body.type)));
        if (json.size() > 1)
            json += ',';
        json += encode(body, form);
    }
    return json + ']';
}

std::optional<QList<SignalPostBody>> decodeSignals(const QByteArray &json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<SignalPostBody> result;
    const QJsonArray array = document.array();
    for (const auto &value : array) {
        auto body = decode(value.toObject());
        if (!body)
            return std::nullopt;
        result.append(*std::move(body));
    }
    return result;
}

} // namespace vantrel
