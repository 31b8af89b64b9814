#include "DemoTourPhone.h"

#include "TourError.h"

#include <QDir>
#include <QFile>
#include <QProcess>

namespace vantrel::tour {

namespace {

constexpr int burstCount = 24;
constexpr int filmSize = 40'000'000; // smaller ones begin again
const QString filmName = QStringLiteral("Road trip.mp4");

QString burstName(int index) {
    return QStringLiteral("BURST_%1.jpg").arg(index + 1, 4, 10, QLatin1Char('0'));
}

} // namespace

DemoTourPhone::DemoTourPhone(const QString &resources, QString root) : m_root(std::move(root)) {
    qputenv("VANTREL_RESOURCES", QFile::encodeName(resources));
    qputenv("DEMO_PHONE_ROOT", QFile::encodeName(m_root));
    set("state=none");
    // As the real tool: what it says about a failed copy is all that there is.
    set("stderr-progress=off");
    set("model=Pixel 7");
    set("serial=28211FDH2000NR");

    // Its first start furnishes it.
    const QString adb = resources + QStringLiteral("/platform-tools/adb");
    QProcess start;
    start.start(adb, {QStringLiteral("devices")});
    if (!start.waitForFinished() || start.exitCode() != 0)
        throw TourError(QStringLiteral("the demo phone does not start: ") + adb);
    QDir().mkpath(hostPath(QStringLiteral("/sdcard/DCIM/Burst")));
    for (int i = 0; i < burstCount; ++i) {
        QFile file(hostPath(QStringLiteral("/sdcard/DCIM/Burst/") + burstName(i)));
        QByteArray bytes("\xFF\xD8\xFF\xE0");
        for (int k = 0; k < 20'000 + 911 * i; ++k)
            bytes += char((k * (i + 3)) >> 3);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw TourError(file.errorString());
    }
    QFile film(hostPath(QStringLiteral("/sdcard/Movies/") + filmName));
    QByteArray bytes(filmSize, Qt::Uninitialized);
    for (int i = 0; i < filmSize; ++i)
        bytes[i] = char(i * 31 + i / 4096);
    if (!film.open(QIODevice::WriteOnly) || film.write(bytes) != bytes.size())
        throw TourError(film.errorString());
}

void DemoTourPhone::plug() {
    set("state=device");
}

bool DemoTourPhone::beInTrouble(const QString &state) {
    set("state=" + state.toUtf8());
    return true;
}

QStringList DemoTourPhone::folder() const {
    return {QStringLiteral("DCIM"), QStringLiteral("Camera")};
}

QString DemoTourPhone::folderPath() const {
    return QStringLiteral("/sdcard/DCIM/Camera");
}

QStringList DemoTourPhone::files() const {
    const QDir camera(hostPath(folderPath()));
    QStringList files = camera.entryList({QStringLiteral("VID_*")}, QDir::Files);
    // The largest pictures take longest.
    files += camera.entryList({QStringLiteral("IMG_*")}, QDir::Files, QDir::Size).mid(0, 4);
    return files;
}

QStringList DemoTourPhone::manyFiles() const {
    QStringList names;
    for (int i = 0; i < burstCount; ++i)
        names.append(burstName(i));
    return names;
}

QString DemoTourPhone::word() const {
    return QStringLiteral("img");
}

QStringList DemoTourPhone::film() const {
    return {QStringLiteral("Movies"), filmName};
}

void DemoTourPhone::setSpeed(double megabytes) {
    set("bandwidth=" + QByteArray::number(megabytes));
}

bool DemoTourPhone::refuse(const QString &path) {
    QString name = path;
    name.replace(QStringLiteral("/sdcard"), QStringLiteral("/storage/emulated/0"));
    set("pull.fail=" + name.toUtf8());
    return true;
}

QByteArray DemoTourPhone::read(const QString &path) {
    QFile file(hostPath(path));
    if (!file.open(QIODevice::ReadOnly))
        throw TourError(path + QStringLiteral(": ") + file.errorString());
    return file.readAll();
}

QString DemoTourPhone::hostPath(const QString &path) const {
    return m_root + path.mid(int(qstrlen("/sdcard")));
}

void DemoTourPhone::set(const QByteArray &line) const {
    QFile file(m_root + QStringLiteral(".conf"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered) ||
        file.write(line + '\n') < 0)
        throw TourError(file.errorString());
}

} // namespace vantrel::tour
