#include "support/DemoPhone.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <filesystem>

namespace vantrel {

namespace {

/// A fixture that cannot be set up must not let a test pass.
void require(bool condition, const QString &what) {
    if (!condition)
        qFatal("demo phone: %s", qPrintable(what));
}

QByteArray unescapedArgument(const QByteArray &text) {
    QByteArray result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const char next = text[++i];
        result += next == 'n' ? '\n' : next == 't' ? '\t' : next;
    }
    return result;
}

} // namespace

DemoPhone::DemoPhone() {
    require(m_folder.isValid(), m_folder.errorString());
    require(QDir().mkpath(root()), root());
    // Nothing of the developer's own settings reaches a test.
    const QStringList variables = QProcessEnvironment::systemEnvironment().keys();
    for (const QString &variable : variables) {
        const QByteArray name = variable.toLocal8Bit();
        if (name.startsWith("DEMO_PHONE_")) {
            m_environmentBefore.insert(name, qgetenv(name.constData()));
            qunsetenv(name.constData());
        }
    }
    setEnvironment("VANTREL_RESOURCES", VANTREL_DEMO_RESOURCES);
    setEnvironment("DEMO_PHONE_ROOT", QFile::encodeName(root()));
    resetAll();
}

DemoPhone::~DemoPhone() {
    for (auto it = m_environmentBefore.cbegin(); it != m_environmentBefore.cend(); ++it) {
        if (it.value())
            qputenv(it.key().constData(), *it.value());
        else
            qunsetenv(it.key().constData());
    }
    // With the names that are no text, which QTemporaryDir cannot spell.
    std::error_code ignored;
    std::filesystem::remove_all(QFile::encodeName(root()).toStdString(), ignored);
}

void DemoPhone::setEnvironment(const char *name, const QByteArray &value) {
    if (!m_environmentBefore.contains(name)) {
        m_environmentBefore.insert(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name))
                                                                         : std::nullopt);
    }
    qputenv(name, value);
}

QString DemoPhone::adb() {
    return QStringLiteral(VANTREL_DEMO_RESOURCES "/platform-tools/adb");
}
QString DemoPhone::serial() {
    return QStringLiteral("demo-phone");
}

QString DemoPhone::root() const {
    return m_folder.filePath(QStringLiteral("phone"));
}

QString DemoPhone::hostPath(const QString &path) const {
    QString relative = path;
    for (const QString &storage : {QStringLiteral("/sdcard"), QStringLiteral("/storage/emulated/0")}) {
        if (relative == storage || relative.startsWith(storage + QLatin1Char('/')))
            relative.remove(0, storage.size() + 1);
    }
    return relative.isEmpty() ? root() : root() + QLatin1Char('/') + relative;
}

void DemoPhone::write(const QString &path, const QByteArray &contents,
                      const std::optional<QDateTime> &modified) const {
    const QFileInfo info(hostPath(path));
    require(QDir().mkpath(info.path()), info.path());
    QFile file(info.filePath());
    require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush(),
            info.filePath());
    if (modified)
        require(file.setFileTime(*modified, QFileDevice::FileModificationTime), info.filePath());
}

void DemoPhone::makeFolder(const QString &path) const {
    require(QDir().mkpath(hostPath(path)), path);
}

void DemoPhone::link(const QString &path, const QString &target) const {
    const QFileInfo info(hostPath(path));
    require(QDir().mkpath(info.path()), info.path());
    require(QFile::link(target, info.filePath()), path);
}

QByteArray DemoPhone::read(const QString &path) const {
    QFile file(hostPath(path));
    require(file.open(QIODevice::ReadOnly), path);
    return file.readAll();
}

bool DemoPhone::exists(const QString &path) const {
    const QFileInfo info(hostPath(path));
    return info.exists() || info.isSymLink();
}

void DemoPhone::set(const QString &setting, const QByteArray &value) const {
    QByteArray escaped = value;
    escaped.replace("\\", "\\\\").replace("\n", "\\n");
    // An empty text is not the same as none.
    append(setting, escaped.isEmpty() ? QByteArray("\\c") : escaped);
}

void DemoPhone::setOther(const QString &other, const QString &state, const QString &model) const {
    set(QStringLiteral("phone"), QString(other % QLatin1Char(' ') % state % QLatin1Char(' ') % model));
}

QString DemoPhone::otherRoot(const QString &other) const {
    return root() + QLatin1Char('-') + other;
}

QString DemoPhone::insertCard(const QString &name) const {
    const QString folder = root() % QStringLiteral("-card-") % name;
    require(QDir().mkpath(folder), folder);
    set(QStringLiteral("card"), name);
    return folder;
}

void DemoPhone::reset(const QString &setting) const {
    append(setting, {});
}

void DemoPhone::resetAll() const {
    QFile::remove(root() + QStringLiteral(".conf"));
    QFile::remove(root() + QStringLiteral(".log"));
    set(QStringLiteral("log"), "on");
}

void DemoPhone::deny(const QString &path) const {
    set(QStringLiteral("fail"),
        QString(QStringLiteral("/storage/emulated/0/") + QDir(root()).relativeFilePath(hostPath(path))));
}

void DemoPhone::append(const QString &setting, const QByteArray &escaped) const {
    // Later lines win, and a running adb may append one of its own: nobody rewrites the file.
    QFile file(root() + QStringLiteral(".conf"));
    require(file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered), file.fileName());
    const QByteArray line = setting.toUtf8() + '=' + escaped + '\n';
    require(file.write(line) == line.size(), file.fileName());
}

QList<QStringList> DemoPhone::commandLines() const {
    QFile file(root() + QStringLiteral(".log"));
    QList<QStringList> result;
    if (!file.open(QIODevice::ReadOnly))
        return result; // none has been started
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.isEmpty())
            continue;
        QStringList arguments;
        for (const QByteArray &argument : line.split('\t'))
            arguments.append(QString::fromUtf8(unescapedArgument(argument)));
        result.append(arguments);
    }
    return result;
}

} // namespace vantrel
