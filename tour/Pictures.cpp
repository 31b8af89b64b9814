#include "Pictures.h"

#include "TourError.h"

#include "Theme/AppTheme.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QWidget>

namespace vantrel::tour {

namespace {

/// Lets the views render the new scheme.
void settle() {
    constexpr int passes = 3;
    for (int pass = 0; pass < passes; ++pass) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace

Pictures::Pictures(const QString &folder) : m_folder(folder) {
    QDir directory(folder);
    if (!directory.mkpath(QStringLiteral(".")))
        throw TourError(QStringLiteral("cannot make the folder ") + folder);
    for (const QString &old : directory.entryList({QStringLiteral("*.png")}, QDir::Files))
        directory.remove(old);
}

void Pictures::take(QWidget &window, const QString &name) const {
    const ColorScheme present = AppTheme::scheme();
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        AppTheme::setScheme(scheme);
        settle();
        for (const int density : {1, 2}) {
            QImage image(window.size() * density, QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(density);
            image.fill(Qt::transparent);
            window.render(&image);
            for (QWidget *popup : QApplication::topLevelWidgets()) {
                if (popup != &window && popup->isVisible() && popup->windowType() == Qt::Popup)
                    popup->render(&image, popup->pos() - window.pos());
            }
            const QString path =
                QStringLiteral("%1/%2-%3%4.png")
                    .arg(m_folder, name,
                         scheme == ColorScheme::light ? QStringLiteral("light") : QStringLiteral("dark"),
                         density == 1 ? QString() : QStringLiteral("@2x"));
            if (!image.save(path))
                throw TourError(QStringLiteral("cannot write ") + path);
        }
    }
    AppTheme::setScheme(present);
    settle();
}

} // namespace vantrel::tour
