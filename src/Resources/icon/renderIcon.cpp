// renderIcon DRAWING.svg SIZE OUTPUT.png: one size of the program's icon, made while building.

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fputs("usage: renderIcon DRAWING.svg SIZE OUTPUT.png\n", stderr);
        return 2;
    }
    const QString drawing = QFile::decodeName(argv[1]);
    const int size = QByteArray(argv[2]).toInt();
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid() || size <= 0) {
        std::fprintf(stderr, "renderIcon: cannot draw %s at size %s\n", argv[1], argv[2]);
        return 1;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    if (!image.save(QFile::decodeName(argv[3]), "PNG")) {
        std::fprintf(stderr, "renderIcon: cannot write %s\n", argv[3]);
        return 1;
    }
    return 0;
}
