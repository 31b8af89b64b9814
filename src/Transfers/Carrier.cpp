#include "Transfers/Carrier.h"

#include "ADB/AndroidPath.h"
#include "Transfers/LocalStaging.h"

#include <QFile>

#include <unistd.h>
#include <utility>

namespace vantrel {

namespace {

/// What adb is to tell of files that have so many bytes together: of many small ones it needs no terminal.
ADBClient::BatchDetail detailOf(qsizetype files, qint64 bytes) {
    constexpr qsizetype many = 20;
    constexpr qint64 small = 256'000;
    return files >= many && bytes / files < small ? ADBClient::BatchDetail::file
                                                  : ADBClient::BatchDetail::percent;
}

/// Both ways between a phone and this computer.
class PhoneCarrier : public Carrier {
public:
    PhoneCarrier(TransferDirection direction, QString serial)
        : m_direction(direction), m_serial(std::move(serial)) {}

    [[nodiscard]] ADBResult<QStringList> carry(const QStringList &sources, const QString &staging,
                                               qint64 bytes, const std::stop_token &stop,
                                               const ADBClient::BatchProgress &onProgress) const override {
        return ADBClient::copyFiles(m_direction, m_serial, sources, staging, bytes,
                                    detailOf(sources.size(), bytes), stop, onProgress);
    }

protected:
    [[nodiscard]] const QString &serial() const { return m_serial; }

private:
    TransferDirection m_direction;
    QString m_serial;
};

class PullCarrier final : public PhoneCarrier {
public:
    explicit PullCarrier(const QString &serial) : PhoneCarrier(TransferDirection::androidToMac, serial) {}

    /// adb removes what it could not finish: a second name keeps it.
    [[nodiscard]] ADBResult<QStringList> begin(const QString &source, const QString &staged, qint64 bytes,
                                               const std::stop_token &stop,
                                               const ADBClient::BatchProgress &onProgress) const override {
        const QString arriving = staged + QStringLiteral(".new");
        bool isLinked = false;
        const auto onArrival = [&](int ended, double fraction) {
            isLinked = isLinked || ::link(QFile::encodeName(arriving).constData(),
                                          QFile::encodeName(staged).constData()) == 0;
            onProgress(ended, fraction);
        };
        auto copied = carry({source}, arriving, bytes, stop, onArrival);
        if (isLinked || !copied)
            QFile::remove(arriving);
        else
            QFile::rename(arriving, staged);
        return copied;
    }

    [[nodiscard]] ADBResult<void> goOn(const QString &source, const QString &staged, qint64 bytes,
                                       qint64 /*from*/, const std::stop_token &stop,
                                       const ADBClient::BytesProgress &onBytes) const override {
        return ADBClient::continuePull(serial(), source, bytes, staged, stop, onBytes);
    }
};

class PushCarrier final : public PhoneCarrier {
public:
    explicit PushCarrier(const QString &serial) : PhoneCarrier(TransferDirection::macToAndroid, serial) {}

    /// The fastest way; what the phone makes of an interrupted one is its own affair.
    [[nodiscard]] ADBResult<QStringList> begin(const QString &source, const QString &staged, qint64 bytes,
                                               const std::stop_token &stop,
                                               const ADBClient::BatchProgress &onProgress) const override {
        return carry({source}, staged, bytes, stop, onProgress);
    }

    [[nodiscard]] ADBResult<void> goOn(const QString &source, const QString &staged, qint64 bytes,
                                       qint64 from, const std::stop_token &stop,
                                       const ADBClient::BytesProgress &onBytes) const override {
        return ADBClient::continuePush(serial(), source, bytes, from, staged, stop, onBytes);
    }
};

class ComputerCarrier final : public Carrier {
public:
    [[nodiscard]] ADBResult<QStringList> carry(const QStringList &sources, const QString &staging,
                                               qint64 /*bytes*/, const std::stop_token &stop,
                                               const ADBClient::BatchProgress &onProgress) const override {
        QStringList errors;
        for (qsizetype i = 0; i < sources.size(); ++i) {
            const QString staged = AndroidPath::join(staging, AndroidPath::lastComponent(sources.at(i)));
            const auto copied =
                LocalFiles::copy(sources.at(i), staged, 0, stop, [&](qint64 done, qint64 size) {
                    onProgress(int(i), size > 0 ? static_cast<double>(done) / static_cast<double>(size) : 0);
                });
            if (stop.stop_requested())
                return stopped();
            if (!copied)
                errors.append(copied.error());
            onProgress(int(i) + 1, 0);
        }
        return errors;
    }

    [[nodiscard]] ADBResult<QStringList> begin(const QString &source, const QString &staged, qint64 bytes,
                                               const std::stop_token &stop,
                                               const ADBClient::BatchProgress &onProgress) const override {
        const auto onBytes = [&](qint64 done) {
            onProgress(0, static_cast<double>(done) / static_cast<double>(bytes));
        };
        const auto copied = goOn(source, staged, bytes, 0, stop, onBytes);
        if (stop.stop_requested())
            return stopped();
        return copied ? QStringList() : QStringList{copied.error().errorDescription()};
    }

    [[nodiscard]] ADBResult<void> goOn(const QString &source, const QString &staged, qint64 /*bytes*/,
                                       qint64 from, const std::stop_token &stop,
                                       const ADBClient::BytesProgress &onBytes) const override {
        const auto copied = LocalFiles::copy(source, staged, from, stop,
                                             [&](qint64 done, qint64 /*size*/) { onBytes(done); });
        if (stop.stop_requested())
            return tl::make_unexpected(stopped().error());
        if (!copied)
            return tl::make_unexpected(ADBError::executionFailed(copied.error()));
        return {};
    }

private:
    static ADBResult<QStringList> stopped() {
        return tl::make_unexpected(ADBError::executionFailed(QStringLiteral("The copy was stopped.")));
    }
};

} // namespace

std::unique_ptr<Carrier> carrierFor(TransferDirection direction, const QString &serial) {
    switch (direction) {
    case TransferDirection::androidToMac:
        return std::make_unique<PullCarrier>(serial);
    case TransferDirection::macToAndroid:
        return std::make_unique<PushCarrier>(serial);
    case TransferDirection::withinMac:
        break;
    }
    return std::make_unique<ComputerCarrier>();
}

} // namespace vantrel
