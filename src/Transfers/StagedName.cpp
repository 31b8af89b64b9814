#include "Transfers/StagedName.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QSysInfo>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <sys/file.h>
#include <unistd.h>

namespace vantrel::StagedName {

namespace {

const QString suffix = QStringLiteral(".part");

/// Where the locks of this user's running programs lie. Emptied by the system when the user has logged out.
QString lockFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
           QStringLiteral("/vantrel-copies");
}

QByteArray lockPath(const QString &program) {
    return QFile::encodeName(lockFolder() % QLatin1Char('/') % program);
}

/// This run of the program: its name, and the lock that the system gives up when it ends, however it ends.
class ThisProgram {
public:
    ThisProgram()
        : m_name(
              QStringLiteral("%1").arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'))) {
        QDir().mkpath(lockFolder());
        m_lock = ::open(lockPath(m_name).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (m_lock >= 0)
            ::flock(m_lock, LOCK_EX | LOCK_NB);
    }
    ~ThisProgram() {
        if (m_lock < 0)
            return;
        ::unlink(lockPath(m_name).constData());
        ::close(m_lock);
    }
    Q_DISABLE_COPY_MOVE(ThisProgram)

    [[nodiscard]] const QString &name() const { return m_name; }

private:
    QString m_name;
    int m_lock = -1;
};

const ThisProgram &thisProgram() {
    static const ThisProgram program;
    return program;
}

bool isRunning(const QString &program) {
    const QByteArray path = lockPath(program);
    const int lock = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    if (lock < 0)
        return errno != ENOENT; // what cannot be asked is not known to be dead
    const bool isFree = ::flock(lock, LOCK_EX | LOCK_NB) == 0;
    if (isFree)
        ::unlink(path.constData());
    ::close(lock);
    return !isFree;
}

/// The names of this program that are in use.
class NamesInUse {
public:
    void add(const QString &name) {
        const std::scoped_lock lock(m_guard);
        m_names.insert(name);
    }
    void remove(const QString &name) {
        const std::scoped_lock lock(m_guard);
        m_names.remove(name);
    }
    [[nodiscard]] bool contains(const QString &name) {
        const std::scoped_lock lock(m_guard);
        return m_names.contains(name);
    }

private:
    std::mutex m_guard;
    QSet<QString> m_names;
};

NamesInUse &namesInUse() {
    static NamesInUse names;
    return names;
}

const QRegularExpression &form() {
    static const QRegularExpression pattern(
        QStringLiteral("\\A\\.vantrel-[0-9a-f]{8}-([0-9a-f]{16})-[0-9a-f]{8}\\.part\\z"));
    return pattern;
}

} // namespace

QString prefix() {
    static const QString text = [] {
        const QByteArray user = QSysInfo::machineUniqueId() + ' ' + QByteArray::number(::getuid());
        const QByteArray hash = QCryptographicHash::hash(user, QCryptographicHash::Sha256).toHex();
        return QString(QStringLiteral(".vantrel-") % QString::fromLatin1(hash.left(8)) % QLatin1Char('-'));
    }();
    return text;
}

QString make() {
    static std::atomic<quint32> last{0};
    const QString name =
        prefix() % thisProgram().name() % QStringLiteral("-%1").arg(++last, 8, 16, QLatin1Char('0')) % suffix;
    namesInUse().add(name);
    return name;
}

void release(const QString &name) {
    namesInUse().remove(name);
}

bool isStaged(const QString &name) {
    return form().match(name).hasMatch();
}

bool isLeftOver(const QString &name) {
    const auto match = form().match(name);
    if (!match.hasMatch() || !name.startsWith(prefix()))
        return false;
    return match.captured(1) == thisProgram().name() ? !namesInUse().contains(name)
                                                     : !isRunning(match.captured(1));
}

} // namespace vantrel::StagedName
