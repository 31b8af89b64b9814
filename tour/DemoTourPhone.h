#pragma once

#include "TourPhone.h"

namespace vantrel::tour {

/// The demo phone, on a folder of its own.
class DemoTourPhone : public TourPhone {
public:
    /// `resources`: the folder that holds the demo phone's platform-tools; `root`: where the phone's storage
    /// will be, not there yet.
    DemoTourPhone(const QString &resources, QString root);

    void plug() override;
    [[nodiscard]] bool beInTrouble(const QString &state) override;
    [[nodiscard]] QStringList folder() const override;
    [[nodiscard]] QString folderPath() const override;
    [[nodiscard]] QStringList files() const override;
    [[nodiscard]] QStringList manyFiles() const override;
    [[nodiscard]] QString word() const override;
    [[nodiscard]] QStringList film() const override;
    void setSpeed(double megabytes) override;
    [[nodiscard]] bool refuse(const QString &path) override;
    void allow() override { set("pull.fail="); }
    void unplug() override { set("state=none"); }
    [[nodiscard]] QByteArray read(const QString &path) override;

private:
    [[nodiscard]] QString hostPath(const QString &path) const;
    void set(const QByteArray &line) const;

    QString m_root;
};

} // namespace vantrel::tour
