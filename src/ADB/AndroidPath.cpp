#include "ADB/AndroidPath.h"

#include "ADB/ADBClient.h"

#include <QRegularExpression>

namespace vantrel::AndroidPath {

QStringList segments(const QString &path) {
    static const QString storage = QStringLiteral("Internal Storage");
    QStringList pieces = ADBClient::normalizePath(path).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (!pieces.isEmpty() && pieces.first() == QLatin1String("sdcard")) {
        pieces.removeFirst();
        pieces.prepend(storage);
    } else if (pieces.mid(0, 3) ==
               QStringList{QStringLiteral("storage"), QStringLiteral("emulated"), QStringLiteral("0")}) {
        pieces = QStringList{storage} + pieces.mid(3);
    }
    return pieces.isEmpty() ? QStringList{storage} : pieces;
}

QString cardOf(const QString &path) {
    static const QRegularExpression pattern(
        QStringLiteral("\\A/storage/[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}(?=/|\\z)"));
    return pattern.match(path).captured();
}

QString breadcrumb(const QString &path) {
    return segments(path).join(QStringLiteral(" › "));
}

QString lastComponent(const QString &path) {
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString join(const QString &folder, const QString &name) {
    return folder.endsWith(QLatin1Char('/')) ? QString(folder % name)
                                             : QString(folder % QLatin1Char('/') % name);
}

QString quotedForShell(const QString &text) {
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') % quoted % QLatin1Char('\'');
}

bool isSafeName(const QString &name) {
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar(u'\0'));
}

} // namespace vantrel::AndroidPath
