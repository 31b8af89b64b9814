#include "ADB/ADBClient.h"

#include "ADB/AndroidPath.h"

namespace vantrel::ADBClient {

namespace {

/// What one run of adb reads.
struct Reading {
    QList<FileBeginning> files;
    qint64 bytes = 0;
};

/// Exact as well where a file is shorter or cannot be read: the phone puts zeros in its place. Two programs
/// on the phone for each file.
QString paddedCommand(const FileBeginning &file) {
    return QStringLiteral("cat ") % AndroidPath::quotedForShell(file.path) %
           QStringLiteral(" /dev/zero 2>/dev/null | head -c ") % QString::number(file.length);
}

QString paddedLine(const QList<FileBeginning> &files) {
    QStringList commands;
    for (const FileBeginning &file : files)
        commands.append(paddedCommand(file));
    return commands.join(QStringLiteral("; "));
}

/// One program for all files of which as much is wanted. No file gives more than was asked for, so that an
/// answer of the agreed length holds just that much of each.
QString quickLine(const QList<FileBeginning> &files) {
    QString line;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const FileBeginning &file = files.at(i);
        if (i == 0 || file.length != files.at(i - 1).length)
            line += (i == 0 ? QString() : QStringLiteral(" 2>/dev/null; ")) % QStringLiteral("head -q -c ") %
                    QString::number(file.length);
        line += QLatin1Char(' ') % AndroidPath::quotedForShell(file.path);
    }
    return line % QStringLiteral(" 2>/dev/null");
}

QList<Reading> readingsFor(const QList<FileBeginning> &files) {
    // adb 29 was seen to refuse a line of more than 64 KiB.
    constexpr qsizetype longestLine = 48'000;
    QList<Reading> readings;
    qsizetype length = 0; // of the last reading's line
    for (const FileBeginning &file : files) {
        const qsizetype more = paddedCommand(file).toUtf8().size() + 2;
        if (readings.isEmpty() || length + more > longestLine) {
            readings.append(Reading());
            length = 0;
        }
        length += more;
        readings.last().files.append(file);
        readings.last().bytes += file.length;
    }
    return readings;
}

ADBResult<QByteArray> ask(const QString &serial, const QString &line, const std::stop_token &stop) {
    // Not "shell", through which an old phone's bytes come as text.
    const auto answer =
        askADB({QStringLiteral("-s"), serial, QStringLiteral("exec-out"), line}, patience(), stop);
    if (!answer)
        return tl::make_unexpected(answer.error());
    if (!answer->succeeded)
        return tl::make_unexpected(answer->error());
    return answer->output;
}

} // namespace

ADBResult<QList<QByteArray>> readBeginnings(const QString &serial, const QList<FileBeginning> &files,
                                            const std::stop_token &stop) {
    constexpr qint64 mostBytes = 32'000'000;
    QList<QByteArray> beginnings;
    for (const Reading &reading : readingsFor(files)) {
        if (reading.bytes > mostBytes)
            return tl::make_unexpected(
                ADBError::executionFailed(QStringLiteral("This is too much to be read at once.")));
        auto answer = ask(serial, quickLine(reading.files), stop);
        if (answer && answer->size() != reading.bytes)
            answer = ask(serial, paddedLine(reading.files), stop);
        if (!answer)
            return tl::make_unexpected(answer.error());
        if (answer->size() != reading.bytes)
            return tl::make_unexpected(
                ADBError::parseFailed(QStringLiteral("The phone’s answer has another length than agreed.")));
        qsizetype place = 0;
        for (const FileBeginning &file : reading.files) {
            beginnings.append(answer->mid(place, file.length));
            place += file.length;
        }
    }
    return beginnings;
}

} // namespace vantrel::ADBClient
