#include "RealTourPhone.h"

#include "TourError.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

namespace vantrel::tour {

namespace {

constexpr int manyCount = 24;
constexpr qsizetype largeSize = 48 * 1024 * 1024; ///< long enough to be seen under way

QStringList largeNames() {
    return {QStringLiteral("VID_0001.mp4"), QStringLiteral("VID_0002.mp4"), QStringLiteral("VID_0003.mp4")};
}

QStringList smallNames() {
    QStringList names;
    for (int i = 0; i < manyCount; ++i)
        names.append(QStringLiteral("BURST_%1.jpg").arg(i + 1, 4, 10, QLatin1Char('0')));
    return names;
}

QByteArray randomBytes(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32 *>(bytes.data()),
                                          size / qsizetype(sizeof(quint32)));
    return bytes;
}

} // namespace

RealTourPhone::RealTourPhone(QString adb, QString serial, const QString &emptyResources)
    : m_adb(std::move(adb)), m_serial(std::move(serial)),
      m_name(QStringLiteral("vantrel-tour-%1")
                 .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'))) {
    qputenv("VANTREL_RESOURCES", QFile::encodeName(emptyResources));
    const QTemporaryDir here;
    run({QStringLiteral("shell"), QStringLiteral("mkdir '%1'").arg(folderPath())});
    for (const QString &name : largeNames() + smallNames()) {
        QFile file(here.filePath(name));
        const QByteArray bytes = randomBytes(largeNames().contains(name) ? largeSize : 64 * 1024);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw TourError(file.errorString());
        file.close();
        run({QStringLiteral("push"), file.fileName(), folderPath() + QLatin1Char('/') + name});
    }
}

RealTourPhone::~RealTourPhone() {
    QProcess::execute(m_adb, {QStringLiteral("-s"), m_serial, QStringLiteral("shell"),
                              QStringLiteral("rm -rf '%1'").arg(folderPath())});
}

QString RealTourPhone::firstSerial(const QString &adb) {
    QProcess devices;
    devices.start(adb, {QStringLiteral("devices")});
    devices.waitForFinished();
    for (const QByteArray &line : devices.readAllStandardOutput().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() == 2 && fields[1] == "device")
            return QString::fromUtf8(fields[0]);
    }
    return {};
}

void RealTourPhone::plug() {
    qunsetenv("VANTREL_RESOURCES");
}

QStringList RealTourPhone::folder() const {
    return {QStringLiteral("Download"), m_name};
}

QString RealTourPhone::folderPath() const {
    return QStringLiteral("/sdcard/Download/") + m_name;
}

QStringList RealTourPhone::files() const {
    return largeNames();
}

QStringList RealTourPhone::manyFiles() const {
    return smallNames();
}

QString RealTourPhone::word() const {
    return QStringLiteral("vid");
}

QByteArray RealTourPhone::read(const QString &path) {
    const QTemporaryDir folder;
    const QString local = folder.filePath(QStringLiteral("copy"));
    run({QStringLiteral("pull"), path, local});
    QFile file(local);
    if (!file.open(QIODevice::ReadOnly))
        throw TourError(QStringLiteral("cannot read ") + local);
    return file.readAll();
}

QByteArray RealTourPhone::run(const QStringList &arguments) const {
    QProcess process;
    process.start(m_adb, QStringList{QStringLiteral("-s"), m_serial} + arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        throw TourError(QStringLiteral("adb ") + arguments.join(QLatin1Char(' ')) + QStringLiteral(": ") +
                        QString::fromUtf8(process.readAllStandardError()));
    return process.readAllStandardOutput();
}

} // namespace vantrel::tour
