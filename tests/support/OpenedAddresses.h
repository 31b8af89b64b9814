#pragma once

#include <QDesktopServices>
#include <QUrl>

namespace vantrel {

/// Stands in for the programs that open addresses of these schemes.
class OpenedAddresses : public QObject {
    Q_OBJECT

public:
    explicit OpenedAddresses(QStringList schemes) : m_schemes(std::move(schemes)) {
        for (const QString &scheme : m_schemes)
            QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~OpenedAddresses() override {
        for (const QString &scheme : m_schemes)
            QDesktopServices::unsetUrlHandler(scheme);
    }

    QList<QUrl> addresses;

public Q_SLOTS:
    void open(const QUrl &address) { addresses.append(address); }

private:
    QStringList m_schemes;
};

} // namespace vantrel
