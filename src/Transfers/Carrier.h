#pragma once

#include "ADB/PhoneCopies.h"
#include "Records/QueueItem.h"

#include <QStringList>

#include <memory>
#include <stop_token>

namespace vantrel {

/// How the bytes of a copy get from its source into its staging folder: one for each way that a copy can go.
/// What arrived is for the caller to look at. Everything blocks; a request to stop ends it within 0.12 s.
class Carrier {
public:
    Carrier() = default;
    virtual ~Carrier() = default;
    Q_DISABLE_COPY_MOVE(Carrier)

    /// Copies files, no two of one name, into a staging folder; one that fails does not end the others. Gives
    /// error lines in the form of adb's. `bytes` is what all of them have together.
    [[nodiscard]] virtual ADBResult<QStringList> carry(const QStringList &sources, const QString &staging,
                                                       qint64 bytes, const std::stop_token &stop,
                                                       const ADBClient::BatchProgress &onProgress) const = 0;
    /// Copies one large file from its beginning to `staged`, so that what has come stays when it ends early,
    /// where that can be had.
    [[nodiscard]] virtual ADBResult<QStringList> begin(const QString &source, const QString &staged,
                                                       qint64 bytes, const std::stop_token &stop,
                                                       const ADBClient::BatchProgress &onProgress) const = 0;
    /// Copies what is missing behind the first `from` bytes of it. Fails with the tool's words.
    [[nodiscard]] virtual ADBResult<void> goOn(const QString &source, const QString &staged, qint64 bytes,
                                               qint64 from, const std::stop_token &stop,
                                               const ADBClient::BytesProgress &onBytes) const = 0;
};

/// `serial` is that of the phone, if one takes part.
[[nodiscard]] std::unique_ptr<Carrier> carrierFor(TransferDirection direction, const QString &serial);

} // namespace vantrel
