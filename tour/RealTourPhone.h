#pragma once

#include "TourPhone.h"

namespace vantrel::tour {

/// A phone that is plugged in. Everything happens in a folder of its own under Download, which is deleted in
/// the end.
class RealTourPhone : public TourPhone {
public:
    /// `emptyResources`: a folder with an adb that finds no phone.
    RealTourPhone(QString adb, QString serial, const QString &emptyResources);
    ~RealTourPhone() override;

    /// The serial of the first phone that is ready, or empty.
    [[nodiscard]] static QString firstSerial(const QString &adb);

    void plug() override;
    [[nodiscard]] bool beInTrouble(const QString &) override { return false; }
    [[nodiscard]] QStringList folder() const override;
    [[nodiscard]] QString folderPath() const override;
    [[nodiscard]] QStringList files() const override;
    [[nodiscard]] QStringList manyFiles() const override;
    [[nodiscard]] QString word() const override;
    [[nodiscard]] QStringList film() const override { return {}; }
    void setSpeed(double /*megabytes*/) override {}
    [[nodiscard]] bool refuse(const QString & /*path*/) override { return false; }
    void allow() override {}
    void unplug() override {}
    [[nodiscard]] QByteArray read(const QString &path) override;

private:
    QByteArray run(const QStringList &arguments) const;

    QString m_adb;
    QString m_serial;
    QString m_name; ///< of the folder
};

} // namespace vantrel::tour
