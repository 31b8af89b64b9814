#include "Thumbnails/EmbeddedPicture.h"

#include <QCoreApplication>
#include <QLibrary>

namespace vantrel {

namespace {

QString modulePath() {
#ifdef Q_OS_MACOS
    const QString folder = QStringLiteral("/../Frameworks/");
#else
    const QString folder = QStringLiteral("/../lib/vantrel/");
#endif
    return QCoreApplication::applicationDirPath() + folder + QStringLiteral("vantrel-embedded-pictures");
}

} // namespace

EmbeddedPicture embeddedPicture(const QByteArray &bytes, MediaKind kind) {
    static const auto find = FindEmbeddedPicture(QLibrary(modulePath()).resolve(findEmbeddedPictureName));
    EmbeddedPicture found;
    if (find)
        find(bytes, kind, found);
    return found;
}

} // namespace vantrel
