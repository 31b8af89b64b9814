#include "ADB/PhoneCopies.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "ADB/BatchText.h"
#include "ADB/PseudoTerminal.h"
#include "ADB/SumText.h"
#include "ADB/ToolRun.h"
#include "ADB/ToolText.h"
#include "ADB/TreeText.h"
#include "Records/ByteSum.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <unistd.h>
#include <utility>

namespace vantrel::ADBClient {

namespace {

constexpr std::chrono::milliseconds waitStep{120};
/// A command line for the phone's shell is one argument of adb, of which Linux allows 128 KB.
constexpr qsizetype longestCommand = 48'000;

ADBError failure(const QString &text) {
    return ADBError::executionFailed(text);
}

/// What a shell line has printed; its errors do not make it fail.
struct ShellAnswer {
    QByteArray output;
    QString errors;
};

QString quoted(const QString &path) {
    return AndroidPath::quotedForShell(path);
}

/// Runs a line that ends by printing answerEnd: an answer without it is none.
ADBResult<ShellAnswer> runShell(const QString &serial, const QString &line, const std::stop_token &stop) {
    constexpr qsizetype largestAnswer = 512'000'000;
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    ToolRun run(*tool,
                {QStringLiteral("-s"), serial, QStringLiteral("shell"), line + QStringLiteral("; echo end")},
                augmentedEnvironment());
    run.stopWith(stop);
    if (const auto started = run.start(); !started)
        return tl::make_unexpected(started.error());
    ShellAnswer answer;
    QByteArray errors;
    for (bool isRunning = true; isRunning;) {
        isRunning = run.isRunningAfter(waitStep);
        answer.output += run.takeStandardOutput();
        errors += run.takeStandardError();
        if (answer.output.size() + errors.size() > largestAnswer)
            return tl::make_unexpected(failure(
                QStringLiteral("The phone’s answer was longer than 512 MB and was not read to its end.")));
    }
    answer.errors = ToolText::reason(QString::fromUtf8(errors)).text;
    if (run.wasStopped())
        return tl::make_unexpected(failure(QStringLiteral("The copy was stopped.")));
    if (!run.succeeded())
        return tl::make_unexpected(failure(answer.errors.isEmpty()
                                               ? QStringLiteral("adb exited with %1").arg(run.exitStatus())
                                               : answer.errors));
    if (!answer.output.endsWith(answerEnd))
        return tl::make_unexpected(
            ADBError::parseFailed(QStringLiteral("The phone’s answer could not be understood. Try again.")));
    return answer;
}

ADBError unreadableAnswer() {
    return ADBError::parseFailed(QStringLiteral("The phone’s answer could not be understood. Try again."));
}

/// The reason at the end of a tool's complaint: what stands behind its last ": ".
QString reasonOf(const QString &complaint) {
    const qsizetype colon = complaint.lastIndexOf(QLatin1String(": "));
    return colon < 0 ? complaint : complaint.mid(colon + 2);
}

/// For the phone's shell; parseTree reads the answer.
QString treeQuestion(const QString &path) {
    return QStringLiteral("find -H ") % quoted(path) % QStringLiteral(" -printf '") %
           QString::fromLatin1(treeFormat) % QLatin1Char('\'');
}

/// Asks with `find … -printf`; older phones know no -printf and are asked with `stat`.
ADBResult<ShellAnswer> ask(const QString &serial, const QString &question, const QString &olderQuestion,
                           const QString &root, const std::stop_token &stop) {
    auto answer = runShell(serial, question, stop);
    if (!answer || !answer->errors.contains(QLatin1String("-printf")))
        return answer;
    answer = runShell(serial, olderQuestion, stop);
    if (answer)
        answer->output = recordsOfLines(answer->output, root);
    return answer;
}

QString statCommand(QLatin1String options) {
    return QStringLiteral("stat ") % options % QStringLiteral("-c '") % QString::fromLatin1(lineFormat) %
           QStringLiteral("' ");
}

/// Calls `use` with as many words as one line holds, until all were given.
template <class Use>
ADBResult<void> forEachLine(const QStringList &words, Use use) {
    for (qsizetype first = 0; first < words.size();) {
        qsizetype end = first;
        qsizetype bytes = 0;
        while (end < words.size() && (end == first || bytes + words.at(end).size() * 3 < longestCommand))
            bytes += words.at(end++).toUtf8().size() + 1;
        if (ADBResult<void> done = use(words.mid(first, end - first)); !done)
            return done;
        first = end;
    }
    return {};
}

QStringList quotedAll(const QStringList &paths) {
    QStringList words;
    for (const QString &path : paths)
        words.append(quoted(path));
    return words;
}

QProcessEnvironment terminalEnvironment() {
    QProcessEnvironment environment = augmentedEnvironment();
    environment.insert(QStringLiteral("TERM"), QStringLiteral("xterm"));
    return environment;
}

/// What a file holds, or all files right in a folder.
qint64 bytesAt(const QString &path) {
    std::error_code ignored;
    const std::filesystem::path native = QFile::encodeName(path).toStdString();
    if (!std::filesystem::is_directory(native, ignored))
        return QFileInfo(path).size();
    qint64 bytes = 0;
    for (std::filesystem::directory_iterator entry(native, ignored), end; entry != end && !ignored;
         entry.increment(ignored)) {
        std::error_code gone;
        if (const auto size = entry->file_size(gone); !gone)
            bytes += static_cast<qint64>(size);
    }
    return bytes;
}

bool isGone(const QString &serial) {
    const auto serials = listDeviceSerials();
    return serials && !serials->contains(serial); // what cannot be asked is not known to be gone
}

} // namespace

ADBResult<FileTree> fetchTree(const QString &serial, const QString &path, const std::stop_token &stop) {
    const auto answer =
        ask(serial, treeQuestion(path),
            statCommand(QLatin1String("-L ")) % quoted(path) % QStringLiteral("; find -H ") % quoted(path) %
                QStringLiteral(" -mindepth 1 -exec ") % statCommand(QLatin1String()) % QStringLiteral("{} +"),
            path, stop);
    if (!answer)
        return tl::make_unexpected(answer.error());
    auto tree = parseTree(answer->output);
    if (!tree)
        return tl::make_unexpected(unreadableAnswer());
    tree->unreadable += parseFindComplaints(answer->errors, path);
    if (tree->entries.isEmpty() && !answer->errors.isEmpty()) {
        if (!answer->errors.endsWith(QLatin1String("No such file or directory")))
            return tl::make_unexpected(failure(answer->errors));
        tree->unreadable.clear();
    }
    return *tree;
}

ADBResult<QHash<QString, TreeEntry>> fetchFacts(const QString &serial, const QStringList &paths,
                                                const std::stop_token &stop) {
    QHash<QString, TreeEntry> facts;
    const auto asked = forEachLine(quotedAll(paths), [&](const QStringList &words) -> ADBResult<void> {
        const QString listed = words.join(QLatin1Char(' '));
        const auto answer =
            ask(serial,
                QStringLiteral("find -H ") % listed % QStringLiteral(" -maxdepth 0 -printf '") %
                    QString::fromLatin1(factsFormat) % QLatin1Char('\''),
                statCommand(QLatin1String("-L ")) % listed, {}, stop);
        if (!answer)
            return tl::make_unexpected(answer.error());
        const auto parsed = parseFacts(answer->output);
        if (!parsed)
            return tl::make_unexpected(unreadableAnswer());
        facts.insert(*parsed);
        return {};
    });
    if (!asked)
        return tl::make_unexpected(asked.error());
    return facts;
}

ADBResult<QStringList> namesBeginningWith(const QString &serial, const QString &folder, const QString &prefix,
                                          const std::stop_token &stop) {
    const QString found = QStringLiteral("find ") % quoted(AndroidPath::join(folder, QString())) %
                          QStringLiteral(" -maxdepth 1 -name '") % prefix % QStringLiteral("*'");
    const auto answer = ask(
        serial, found % QStringLiteral(" -printf '") % QString::fromLatin1(treeFormat) % QLatin1Char('\''),
        found % QStringLiteral(" -exec ") % statCommand(QLatin1String()) % QStringLiteral("{} +"), {}, stop);
    if (!answer)
        return tl::make_unexpected(answer.error());
    const auto facts = parseFacts(answer->output); // the format of a tree: paths below the folder
    return facts ? ADBResult<QStringList>(facts->keys()) : tl::make_unexpected(unreadableAnswer());
}

ADBResult<void> makeMarkedFolder(const QString &serial, const QString &path, const QString &marker,
                                 const std::stop_token &stop) {
    const auto answer = runShell(serial,
                                 QStringLiteral("mkdir ") % quoted(path) % QLatin1Char(' ') %
                                     quoted(AndroidPath::join(path, marker)),
                                 stop);
    if (!answer)
        return tl::make_unexpected(answer.error());
    if (!answer->errors.isEmpty()) // the first line is of the folder itself
        return tl::make_unexpected(failure(reasonOf(answer->errors.section(QLatin1Char('\n'), 0, 0))));
    return {};
}

ADBResult<void> makeFolders(const QString &serial, const QStringList &paths, const std::stop_token &stop) {
    return forEachLine(quotedAll(paths), [&](const QStringList &words) -> ADBResult<void> {
        const auto answer =
            runShell(serial, QStringLiteral("mkdir -p ") + words.join(QLatin1Char(' ')), stop);
        if (!answer)
            return tl::make_unexpected(answer.error());
        return {};
    });
}

ADBResult<QHash<QString, QString>> moveFiles(const QString &serial, const QList<PhoneMove> &moves,
                                             const QString &stagingFolder, AfterMoves after,
                                             const std::stop_token &stop) {
    // Files that keep their names go into their folder with one command, since each costs a process.
    QMap<QString, QStringList> byFolder;
    QStringList commands;
    for (const PhoneMove &move : moves) {
        const QString name = AndroidPath::lastComponent(move.to);
        if (name == AndroidPath::lastComponent(move.from))
            byFolder[move.to.chopped(name.size())].append(move.from);
        else
            commands.append(QStringLiteral("mv -nT ") % quoted(move.from) % QLatin1Char(' ') %
                            quoted(move.to));
    }
    for (auto folder = byFolder.cbegin(); folder != byFolder.cend(); ++folder) {
        [[maybe_unused]] const auto added =
            forEachLine(quotedAll(folder.value()), [&](const QStringList &words) -> ADBResult<void> {
                commands.append(QStringLiteral("mv -n ") % words.join(QLatin1Char(' ')) % QLatin1Char(' ') %
                                quoted(folder.key()));
                return {};
            });
    }
    // What is still there afterwards was not moved. Asked for with the last line, since a run of adb costs
    // the time of many renames.
    commands.append(treeQuestion(stagingFolder));
    if (after == AfterMoves::removeStaging)
        commands.last() += QStringLiteral("; rm -rf ") + quoted(stagingFolder);
    QString complaints;
    QByteArray listing;
    if (const auto moved = forEachLine(commands,
                                       [&](const QStringList &lines) -> ADBResult<void> {
                                           const auto answer =
                                               runShell(serial, lines.join(QStringLiteral("; ")), stop);
                                           if (!answer)
                                               return tl::make_unexpected(answer.error());
                                           complaints += answer->errors % QLatin1Char('\n');
                                           listing = answer->output;
                                           return {};
                                       });
        !moved)
        return tl::make_unexpected(moved.error());

    auto left = parseTree(listing);
    if (complaints.contains(QLatin1String("-printf"))) {
        const auto asked = fetchTree(serial, stagingFolder, stop);
        if (!asked)
            return tl::make_unexpected(asked.error());
        left = *asked;
    }
    if (!left)
        return tl::make_unexpected(unreadableAnswer());
    QHash<QString, QString> unmoved;
    for (const TreeEntry &entry : left->entries) {
        if (entry.kind != TreeEntry::Kind::file)
            continue;
        const QString path = AndroidPath::join(stagingFolder, entry.path);
        QString reason;
        for (const QStringView line : ToolText::lines(complaints)) {
            if (line.contains(QString(QLatin1Char('\'') % path % QLatin1Char('\''))))
                reason = reasonOf(line.toString());
        }
        unmoved.insert(path, reason);
    }
    return unmoved;
}

ADBResult<void> removeOwn(const QString &serial, const QStringList &paths) {
    return forEachLine(quotedAll(paths), [&](const QStringList &words) -> ADBResult<void> {
        const auto answer = runShell(serial, QStringLiteral("rm -rf ") + words.join(QLatin1Char(' ')), {});
        if (!answer)
            return tl::make_unexpected(answer.error());
        return {};
    });
}

ADBResult<QStringList> copyFiles(TransferDirection direction, const QString &serial,
                                 const QStringList &sources, const QString &folder, qint64 expectedBytes,
                                 BatchDetail detail, const std::stop_token &stop,
                                 const BatchProgress &onProgress) {
    const bool isPull = direction == TransferDirection::androidToMac;
    const qint64 mostBytes = byteSum(expectedBytes, mostGrowth);
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    QStringList arguments{QStringLiteral("-s"), serial};
    if (isPull)
        arguments += {QStringLiteral("pull"), QStringLiteral("-a")};
    else
        arguments += QStringLiteral("push");
    arguments += sources;
    arguments += folder;

    BatchOutput output;
    QByteArray errors;
    std::optional<PseudoTerminal> terminal;
    ToolRun run(*tool, arguments, terminalEnvironment());
    if (detail == BatchDetail::percent)
        run.useTerminal(terminal.emplace());
    run.stopWith(stop);
    if (const auto started = run.start(); !started)
        return tl::make_unexpected(started.error());
    const auto read = [&](const QByteArray &bytes) {
        static_cast<void>(output.feed(bytes));
        if (onProgress && !bytes.isEmpty()) // also where the figure is the same: bytes came
            onProgress(output.endedFiles(), output.fractionOfNext());
    };
    if (terminal)
        terminal->startReading(read);
    bool isRunning = true;
    bool isTooMuch = false;
    while (isRunning) {
        isRunning = run.isRunningAfter(waitStep);
        isTooMuch = isTooMuch || (isRunning && isPull && bytesAt(folder) > mostBytes);
        if (isTooMuch)
            run.kill();
        if (!terminal)
            read(run.takeStandardOutput());
        constexpr qsizetype kept = 65'536;
        errors += run.takeStandardError();
        errors = errors.right(kept);
    }
    if (terminal)
        terminal->finishReading();

    if (run.wasStopped())
        return tl::make_unexpected(failure(QStringLiteral("The copy was stopped.")));
    if (isTooMuch)
        return output.errors() + QStringList{sourceChanged()};
    if (run.succeeded())
        return output.errors();
    if (isGone(serial))
        return tl::make_unexpected(failure(QStringLiteral("The phone was disconnected during the copy.")));
    const QStringList lines = output.errors();
    const auto noPhone = std::find_if(lines.begin(), lines.end(), [](const QString &line) {
        return line.contains(QLatin1String("failed to get feature set"));
    });
    if (noPhone != lines.end()) // and back by now
        return tl::make_unexpected(failure(*noPhone));
    if (!lines.isEmpty())
        return lines;
    const QString message = ToolText::reason(ToolText::decode(errors)).text;
    return tl::make_unexpected(
        failure(message.isEmpty() ? QStringLiteral("adb exited with %1").arg(run.exitStatus()) : message));
}

namespace {

/// Runs `adb shell LINE` whose streams the caller has tied to files. `reached` tells how far it has come, of
/// the bytes that it is to carry: what goes beyond is ended.
ADBResult<void> runStream(ToolRun &run, const QString &serial, qint64 sizeBytes,
                          const std::function<qint64()> &reached, const BytesProgress &onProgress) {
    if (const auto started = run.start(); !started)
        return tl::make_unexpected(started.error());
    QByteArray errors;
    qint64 before = -1;
    while (run.isRunningAfter(waitStep)) {
        constexpr qsizetype kept = 65'536;
        errors += run.takeStandardError();
        errors = errors.right(kept);
        const qint64 now = reached();
        if (now > sizeBytes) {
            run.kill();
            return tl::make_unexpected(failure(sourceChanged()));
        }
        if (now != std::exchange(before, now))
            onProgress(now);
    }
    errors += run.takeStandardError();
    if (run.wasStopped())
        return tl::make_unexpected(failure(QStringLiteral("The copy was stopped.")));
    const QString message = ToolText::reason(ToolText::decode(errors)).text;
    if (run.succeeded() && message.isEmpty())
        return {};
    if (isGone(serial))
        return tl::make_unexpected(failure(QStringLiteral("The phone was disconnected during the copy.")));
    return tl::make_unexpected(
        failure(message.isEmpty() ? QStringLiteral("adb exited with %1").arg(run.exitStatus()) : message));
}

QStringList shellArguments(const QString &serial, const QString &line) {
    return {QStringLiteral("-s"), serial, QStringLiteral("shell"), line};
}

} // namespace

ADBResult<void> continuePull(const QString &serial, const QString &source, qint64 sizeBytes,
                             const QString &localPath, const std::stop_token &stop,
                             const BytesProgress &onProgress) {
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    const qint64 first = QFileInfo(localPath).size() + 1;
    ToolRun run(*tool,
                shellArguments(serial, QStringLiteral("tail -c +%1 ").arg(first) +
                                           AndroidPath::quotedForShell(source)),
                augmentedEnvironment());
    run.appendTo(localPath);
    run.stopWith(stop);
    return runStream(
        run, serial, sizeBytes, [&] { return QFileInfo(localPath).size(); }, onProgress);
}

ADBResult<void> continuePush(const QString &serial, const QString &localPath, qint64 sizeBytes, qint64 from,
                             const QString &path, const std::stop_token &stop,
                             const BytesProgress &onProgress) {
    const auto tool = resolveADBPath();
    if (!tool)
        return tl::make_unexpected(ADBError::adbNotFound());
    QFile file(localPath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !file.seek(from))
        return tl::make_unexpected(
            failure(QStringLiteral("This computer can’t read it: ") + file.errorString()));
    ToolRun run(*tool, shellArguments(serial, QStringLiteral("cat >>") + quoted(path)),
                augmentedEnvironment());
    run.readFrom(file.handle());
    run.stopWith(stop);
    return runStream(
        run, serial, sizeBytes, [&] { return qint64(::lseek(file.handle(), 0, SEEK_CUR)); }, onProgress);
}

ADBResult<void> setModified(const QString &serial, const QString &path, qint64 modified,
                            const std::stop_token &stop) {
    const auto answer = runShell(serial, QStringLiteral("touch -d @%1 ").arg(modified) + quoted(path), stop);
    if (!answer)
        return tl::make_unexpected(answer.error());
    return {};
}

ADBResult<PhoneSums> fetchSums(const QString &serial, const QStringList &paths, const std::stop_token &stop) {
    PhoneSums found;
    const auto asked = forEachLine(quotedAll(paths), [&](const QStringList &words) -> ADBResult<void> {
        const auto answer = runShell(serial, QStringLiteral("md5sum ") + words.join(QLatin1Char(' ')), stop);
        if (!answer)
            return tl::make_unexpected(answer.error());
        found.sums += parseSums(answer->output, paths.mid(found.sums.size(), words.size()));
        if (answer->errors.isEmpty())
            return {};
        found.complaint = reasonOf(answer->errors);
        found.isUnavailable = found.complaint.endsWith(QLatin1String("not found"));
        return {};
    });
    if (!asked)
        return tl::make_unexpected(asked.error());
    return found;
}

} // namespace vantrel::ADBClient
