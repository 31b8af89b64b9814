#include "ADB/ADBClient.h"

#include "ADB/ToolRun.h"
#include "ADB/ToolText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vantrel::ADBClient {

namespace {

bool isExecutableFile(const QString &path) {
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

std::optional<QString> firstExecutable(const QStringList &candidates) {
    for (const QString &path : candidates) {
        if (isExecutableFile(path))
            return path;
    }
    return std::nullopt;
}

/// The application's resource directories, the one to prefer first.
QStringList resourceDirectories() {
    QStringList directories;
    const QString override = qEnvironmentVariable("VANTREL_RESOURCES");
    if (!override.isEmpty())
        directories.append(override);
#ifdef Q_OS_MACOS
    directories.append(QCoreApplication::applicationDirPath() + QStringLiteral("/../Resources"));
#else
    directories.append(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vantrel"));
#endif
#ifdef VANTREL_DEVELOPMENT_RESOURCES
    // Given by the build and absolute: __FILE__ may be relative, and then it is whatever folder the program
    // is started in that decides which adb runs.
    directories.append(QStringLiteral(VANTREL_DEVELOPMENT_RESOURCES));
#endif
    return directories;
}

} // namespace

std::optional<QString> bundledADBPath() {
    QStringList candidates;
    for (const QString &directory : resourceDirectories())
        candidates.append(QDir::cleanPath(directory + QStringLiteral("/platform-tools/adb")));
    return firstExecutable(candidates);
}

std::optional<QString> resolveADBPath() {
    if (auto bundled = bundledADBPath())
        return bundled;
    auto installed =
        firstExecutable({QStringLiteral("/opt/homebrew/bin/adb"), QStringLiteral("/usr/local/bin/adb"),
                         QDir::homePath() + QStringLiteral("/Library/Android/sdk/platform-tools/adb"),
                         QStringLiteral("/Users/Shared/Android/sdk/platform-tools/adb")});
    if (installed)
        return installed;
    // Not by running which: that is a process more for every short copy.
    const QString found = QStandardPaths::findExecutable(
        QStringLiteral("adb"), augmentedEnvironment().value(QStringLiteral("PATH")).split(QLatin1Char(':')));
    return found.isEmpty() ? std::nullopt : std::optional(found);
}

QProcessEnvironment augmentedEnvironment() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QStringList directories{QStringLiteral("/opt/homebrew/bin"), QStringLiteral("/usr/local/bin")};
    if (auto bundled = bundledADBPath())
        directories.prepend(QFileInfo(*bundled).path());
    directories.append(environment.value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("PATH"), directories.join(QLatin1Char(':')));
    return environment;
}

ADBResult<QString> runProcess(const QString &executable, const QStringList &arguments,
                              const QProcessEnvironment &environment) {
    constexpr qsizetype largestOutput = 64'000'000;
    ToolRun run(executable, arguments, environment);
    if (const auto started = run.start(); !started)
        return tl::make_unexpected(started.error());

    QByteArray output;
    QByteArray errors;
    bool isRunning = true;
    while (isRunning) {
        isRunning = run.isRunningAfter(std::chrono::milliseconds(120));
        output += run.takeStandardOutput();
        errors += run.takeStandardError();
        if (output.size() + errors.size() > largestOutput)
            return tl::make_unexpected(ADBError::executionFailed(
                QStringLiteral("The phone’s answer was longer than 64 MB and was not read to its end.")));
    }
    if (run.wasStopped())
        return tl::make_unexpected(ADBError::executionFailed(QStringLiteral("adb was stopped.")));
    if (run.succeeded())
        return ToolText::decode(output);
    const QString message = ToolText::reason(ToolText::decode(errors)).text;
    return tl::make_unexpected(ADBError::executionFailed(
        message.isEmpty() ? QStringLiteral("adb exited with ") + QString::number(run.exitStatus())
                          : message));
}

ADBResult<QString> runADB(const QStringList &arguments) {
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    return runProcess(*tool, arguments, augmentedEnvironment());
}

void stopRunningTools() {
    ToolRun::stopAll();
}

} // namespace vantrel::ADBClient
