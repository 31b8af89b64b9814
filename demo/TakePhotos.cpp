// TakePhotos FOLDER: paints the photos of the demo phone, as a camera's files.

#include "support/ExifPhoto.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>

#include <cmath>
#include <cstdio>
#include <functional>

namespace {

using Random = QRandomGenerator;

constexpr QSize size(2400, 1800);
constexpr QRectF frame(0, 0, 2400, 1800);

void paintSky(QPainter &painter, std::initializer_list<QColor> colors) {
    QLinearGradient sky(0, 0, 0, frame.height());
    int place = 0;
    for (const QColor &color : colors)
        sky.setColorAt(double(place++) / double(colors.size() - 1), color);
    painter.fillRect(frame, sky);
}

void paintGlow(QPainter &painter, const QPointF &center, double radius, const QColor &color) {
    QRadialGradient glow(center, radius);
    QColor clear = color;
    clear.setAlpha(0);
    glow.setColorAt(0, color);
    glow.setColorAt(0.12, color);
    glow.setColorAt(0.16, QColor(color.red(), color.green(), color.blue(), 90));
    glow.setColorAt(1, clear);
    painter.fillRect(frame, glow);
}

/// A line of hills from left to right; `roughness` 0 is a dune, 1 are mountains.
QPainterPath ridge(Random &random, double height, double amplitude, double roughness) {
    const double a = random.bounded(6.0), b = random.bounded(6.0), c = random.bounded(6.0);
    QPainterPath path(frame.bottomLeft());
    for (int x = 0; x <= 2400; x += 8) {
        const double t = x / 2400.0;
        double y = std::sin(t * 5 + a) * 0.6 + std::sin(t * 11 + b) * 0.3;
        y += roughness * (std::abs(std::sin(t * 17 + c)) * 0.6 + std::sin(t * 61 + a) * 0.12 +
                          (random.generateDouble() - 0.5) * 0.08);
        path.lineTo(x, height - amplitude * y);
    }
    path.lineTo(frame.bottomRight());
    return path;
}

void paintHills(QPainter &painter, Random &random, const QColor &far, const QColor &near, double roughness) {
    constexpr int layers = 5;
    for (int layer = 0; layer < layers; ++layer) {
        const double t = double(layer) / (layers - 1);
        const auto mix = [t](int a, int b) { return int(a + (b - a) * t); };
        QLinearGradient ground(0, 700 + 180 * layer, 0, 1300 + 150 * layer);
        const QColor color(mix(far.red(), near.red()), mix(far.green(), near.green()),
                           mix(far.blue(), near.blue()));
        ground.setColorAt(0, color);
        ground.setColorAt(1, color.darker(125));
        painter.fillPath(ridge(random, 950 + 190 * layer, 330 - 50 * layer, roughness), ground);
    }
}

void paintSea(QPainter &painter, Random &random, const QColor &deep, const QColor &light, double sun) {
    constexpr double horizon = 1050;
    QLinearGradient sea(0, horizon, 0, frame.bottom());
    sea.setColorAt(0, light);
    sea.setColorAt(1, deep);
    painter.fillRect(QRectF(0, horizon, frame.width(), frame.height() - horizon), sea);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 900; ++i) {
        const double depth = std::pow(random.generateDouble(), 1.6);
        const double y = horizon + depth * (frame.height() - horizon);
        const double spread = 90 + depth * 500;
        const bool isGlitter = i % 2 == 0;
        const double x = isGlitter ? sun + (random.generateDouble() - 0.5) * spread : random.bounded(2400.0);
        painter.setBrush(QColor(255, 255, 255, isGlitter ? 120 : 26));
        painter.drawEllipse(QPointF(x, y), 10 + depth * 60, 1.5 + depth * 6);
    }
}

void paintTrees(QPainter &painter, Random &random, double ground, const QColor &color, int count) {
    for (int i = 0; i < count; ++i) {
        const double x = random.bounded(2400.0);
        const double height = 160 + random.bounded(260.0);
        QPainterPath tree;
        for (int tier = 0; tier < 5; ++tier) {
            const double top = ground - height * (1 - tier * 0.18);
            const double half = height * (0.07 + tier * 0.035);
            tree.addPolygon(QPolygonF({QPointF(x, top), QPointF(x + half, top + height * 0.3),
                                       QPointF(x - half, top + height * 0.3)}));
        }
        tree.setFillRule(Qt::WindingFill);
        painter.fillPath(tree, color.lighter(90 + int(random.bounded(50))));
    }
}

void paintTown(QPainter &painter, Random &random) {
    for (int row = 0; row < 3; ++row) {
        for (int x = -60; x < 2400; x += 150 + int(random.bounded(90))) {
            const int height = 420 + int(random.bounded(620)) - row * 120;
            const QRect house(x, 1800 - height, 150 + int(random.bounded(80)), height);
            painter.fillRect(house, QColor(24 + row * 6, 28 + row * 6, 52 + row * 8));
            for (int window = 0; window < height / 9; ++window) {
                const int column = int(random.bounded(5)), line = int(random.bounded(height / 44 + 1));
                painter.fillRect(
                    house.left() + 16 + column * 30, house.top() + 20 + line * 44, 16, 24,
                    QColor(255, 200 + int(random.bounded(50)), 120, 60 + int(random.bounded(190))));
            }
        }
    }
}

void paintFlowers(QPainter &painter, Random &random) {
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 46; ++i) {
        const double near = i / 46.0;
        const QPointF center(random.bounded(2400.0), 500 + near * 1200 + random.bounded(160.0));
        const double radius = 30 + near * 150;
        painter.setPen(QPen(QColor(50, 110, 50), radius / 9));
        painter.drawLine(center, center + QPointF(random.bounded(60.0) - 30, 900));
        painter.setPen(Qt::NoPen);
        const QColor petal =
            QColor::fromHsv((330 + int(random.bounded(70))) % 360, 130 + int(random.bounded(90)), 240);
        for (int k = 0; k < 9; ++k) {
            painter.save();
            painter.translate(center);
            painter.rotate(k * 40);
            QLinearGradient leaf(0, 0, radius, 0);
            leaf.setColorAt(0, petal.darker(130));
            leaf.setColorAt(1, petal);
            painter.setBrush(leaf);
            painter.drawEllipse(QPointF(radius * 0.6, 0), radius * 0.5, radius * 0.24);
            painter.restore();
        }
        painter.setBrush(QColor(250, 200, 60));
        painter.drawEllipse(center, radius * 0.24, radius * 0.24);
    }
}

/// What light does to a sensor.
void addGrain(QImage &image, Random &random) {
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int grain = int(random.generate() & 15) - 7;
            line[x] = qRgb(qBound(0, qRed(line[x]) + grain, 255), qBound(0, qGreen(line[x]) + grain, 255),
                           qBound(0, qBlue(line[x]) + grain, 255));
        }
    }
}

using Scene = std::function<void(QPainter &, Random &)>;

const Scene scenes[] = {
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{52, 40, 96}, {196, 84, 92}, {252, 168, 92}, {255, 214, 140}});
        paintGlow(painter, {1500, 960}, 900, {255, 236, 190});
        paintSea(painter, random, {40, 30, 70}, {232, 140, 96}, 1500);
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{74, 138, 206}, {150, 196, 232}, {226, 238, 246}, {240, 244, 246}});
        paintHills(painter, random, {158, 180, 204}, {42, 74, 62}, 1);
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{18, 22, 52}, {38, 44, 92}, {90, 78, 132}, {160, 110, 130}});
        paintGlow(painter, {620, 420}, 620, {246, 244, 224});
        paintTown(painter, random);
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{120, 196, 236}, {196, 226, 240}, {246, 228, 196}, {246, 214, 160}});
        paintGlow(painter, {1800, 380}, 700, {255, 250, 226});
        paintHills(painter, random, {240, 196, 132}, {170, 92, 48}, 0.05);
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{134, 196, 140}, {180, 214, 150}, {96, 156, 88}, {40, 92, 52}});
        paintFlowers(painter, random);
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{150, 176, 196}, {204, 214, 220}, {232, 230, 224}, {226, 226, 226}});
        paintHills(painter, random, {206, 216, 226}, {120, 142, 150}, 0.5);
        paintTrees(painter, random, 1500, {38, 66, 62}, 50);
        paintTrees(painter, random, 1800, {22, 44, 42}, 40);
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{36, 110, 190}, {110, 180, 226}, {196, 228, 240}, {220, 238, 244}});
        paintSea(painter, random, {8, 84, 120}, {70, 186, 196}, 900);
        painter.fillPath(ridge(random, 1690, 70, 0), QColor(238, 214, 166));
    },
    [](QPainter &painter, Random &random) {
        paintSky(painter, {{236, 150, 120}, {250, 190, 150}, {252, 220, 190}, {250, 226, 206}});
        paintHills(painter, random, {214, 150, 150}, {70, 40, 76}, 0.8);
        paintTrees(painter, random, 1800, {44, 26, 54}, 34);
    },
};

} // namespace

int main(int argc, char **argv) {
    using namespace vantrel;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("TakePhotos FOLDER\n", stderr);
        return 2;
    }
    quint32 seed = 7;
    for (const Scene &scene : scenes) {
        Random random(seed);
        QImage image(size, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene(painter, random);
        painter.end();
        addGrain(image, random);
        const QImage small = image.scaled(320, 240, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        QFile file(QString::fromLocal8Bit(argv[1]) + QStringLiteral("/%1.jpg").arg(seed - 6));
        const QByteArray photo = exifPhoto(jpegOf(image, 80), size, jpegOf(small, 80));
        if (!file.open(QIODevice::WriteOnly) || file.write(photo) != photo.size())
            return 1;
        ++seed;
    }
    return 0;
}
