#include "ADB/ADBClient.h"

#include "ADB/ToolRun.h"
#include "ADB/ToolText.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>

#include <atomic>

namespace vantrel::ADBClient {

namespace {

std::atomic<std::chrono::milliseconds> currentPatience{std::chrono::seconds(15)};

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

/// Runs a program until it ends, or until it has been silent for as long as it may. What it prints is handed
/// to `read` as it comes, if there is one, and else kept.
ADBResult<ToolAnswer> runToItsEnd(const QString &executable, const QStringList &arguments,
                                  const QProcessEnvironment &environment,
                                  std::optional<std::chrono::milliseconds> longestSilence,
                                  const std::stop_token &stop = {}, const OutputReader &read = {}) {
    constexpr qsizetype largestOutput = 64'000'000;
    ToolRun run(executable, arguments, environment);
    run.stopWith(stop);
    if (const auto started = run.start(); !started)
        return tl::make_unexpected(started.error());

    ToolAnswer answer;
    qsizetype received = 0;
    QElapsedTimer silence;
    silence.start();
    const auto take = [&] {
        const QByteArray output = run.takeStandardOutput();
        const QByteArray errors = run.takeStandardError();
        if (output.isEmpty() && errors.isEmpty())
            return;
        silence.start();
        received += output.size() + errors.size();
        answer.errors += errors;
        if (received > largestOutput)
            return;
        if (read)
            read(output);
        else
            answer.output += output;
    };
    if (read)
        run.onStandardOutput(take);
    bool isRunning = true;
    while (isRunning) {
        isRunning = run.isRunningAfter(std::chrono::milliseconds(120));
        take();
        if (received > largestOutput)
            return tl::make_unexpected(ADBError::executionFailed(
                QStringLiteral("The phone’s answer was longer than 64 MB and was not read to its end.")));
        if (isRunning && longestSilence && silence.hasExpired(longestSilence->count()))
            return tl::make_unexpected(ADBError::noAnswer()); // the run takes its process with it
    }
    if (run.wasStopped())
        return tl::make_unexpected(ADBError::executionFailed(QStringLiteral("adb was stopped.")));
    answer.exitStatus = run.exitStatus();
    answer.succeeded = run.succeeded();
    return answer;
}

ADBResult<QString> textOf(const ToolAnswer &answer) {
    if (!answer.succeeded)
        return tl::make_unexpected(answer.error());
    return ToolText::decode(answer.output);
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

ADBError ToolAnswer::error() const {
    const QString message = ToolText::reason(ToolText::decode(errors)).text;
    return ADBError::executionFailed(
        message.isEmpty() ? QStringLiteral("adb exited with ") + QString::number(exitStatus) : message);
}

ADBResult<QString> runProcess(const QString &executable, const QStringList &arguments,
                              const QProcessEnvironment &environment) {
    return runToItsEnd(executable, arguments, environment, std::nullopt).and_then(textOf);
}

ADBResult<QString> runADB(const QStringList &arguments) {
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    return runProcess(*tool, arguments, augmentedEnvironment());
}

ADBResult<ToolAnswer> askADB(const QStringList &arguments, const OutputReader &read) {
    return askADB(arguments, patience(), {}, read);
}

ADBResult<ToolAnswer> askADB(const QStringList &arguments, std::chrono::milliseconds patience,
                             const std::stop_token &stop, const OutputReader &read) {
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    return runToItsEnd(*tool, arguments, augmentedEnvironment(), patience, stop, read);
}

ADBResult<QString> askADBForText(const QStringList &arguments) {
    return askADB(arguments).and_then(textOf);
}

std::chrono::milliseconds patience() {
    return currentPatience;
}

void setPatience(std::chrono::milliseconds patience) {
    currentPatience = patience;
}

void stopRunningTools() {
    ToolRun::stopAll();
}

} // namespace vantrel::ADBClient
