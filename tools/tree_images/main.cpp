// Draws the images that every tree of the program shows, 0 to 53, as 16 x 16 PNG
// files named icon_NN.png into the folder given as the only argument. Run at build
// time; nothing drawn is committed. An object's kind has two images: the odd one for
// it as a part of another object (drawn hollow), the even one for it on its own.
//
//  0 nothing              5 light, as a part     9 together: side-by-side arrows
//  1 scene, as a part     6 light               10 in order: a numbered list
//  2 scene                7 model, as a part    11-52 the numbers 1 to 42
//  3 camera, as a part    8 model               53 sound
//  4 camera
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cstdio>
#include <functional>

namespace {

constexpr int Size = 16;
constexpr int kSound = 53;
const QColor Ink(0x20, 0x30, 0x50);
const QColor Blue(0x2b, 0x6c, 0xc4);
const QColor Green(0x2e, 0x8b, 0x57);
const QColor Amber(0xe0, 0xa0, 0x20);

// Digits 0 to 9 in a 3 x 5 grid, one row of three bits per entry, top row first.
constexpr std::array<std::array<int, 5>, 10> Digits = {{
    {7, 5, 5, 5, 7},
    {2, 6, 2, 2, 7},
    {7, 1, 7, 4, 7},
    {7, 1, 3, 1, 7},
    {5, 5, 7, 1, 1},
    {7, 4, 7, 1, 7},
    {7, 4, 7, 5, 7},
    {7, 1, 2, 2, 2},
    {7, 5, 7, 5, 7},
    {7, 5, 7, 1, 7},
}};

void DrawDigit(QPainter& p, int digit, int left, int top, int scale) {
    for (int row = 0; row < 5; ++row)
        for (int column = 0; column < 3; ++column)
            if (Digits[digit][row] & (4 >> column))
                p.fillRect(left + column * scale, top + row * scale, scale, scale, Qt::white);
}

void DrawNumber(QPainter& p, int number) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(Blue);
    p.drawRoundedRect(QRectF(0.5, 0.5, 15, 15), 3, 3);
    p.setRenderHint(QPainter::Antialiasing, false);
    if (number < 10) {
        DrawDigit(p, number, 5, 3, 2);
    } else {
        DrawDigit(p, number / 10, 1, 3, 2);
        DrawDigit(p, number % 10, 9, 3, 2);
    }
}

void DrawCamera(QPainter& p, bool filled) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Ink, 1));
    p.setBrush(filled ? QBrush(Ink) : QBrush(Qt::white));
    p.drawRoundedRect(QRectF(1.5, 4.5, 13, 9), 2, 2);
    p.drawRect(QRectF(5.5, 2.5, 5, 2));
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(8, 9), 3.5, 3.5);
    p.setBrush(Blue);
    p.drawEllipse(QPointF(8, 9), 2, 2);
}

void DrawLight(QPainter& p, bool filled) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Ink, 1));
    p.setBrush(filled ? QBrush(Amber) : QBrush(Qt::white));
    p.drawEllipse(QPointF(8, 6.5), 5, 5);
    p.fillRect(6, 11, 4, 4, Ink);
}

void DrawSound(QPainter& p) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(Ink);
    QPainterPath speaker;
    speaker.addPolygon(QPolygonF({{1, 6}, {4, 6}, {8, 2}, {8, 14}, {4, 10}, {1, 10}}));
    p.drawPath(speaker);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(Ink, 1.3));
    p.drawArc(QRectF(6, 4, 6, 8), -50 * 16, 100 * 16);
    p.drawArc(QRectF(6, 1, 9, 14), -50 * 16, 100 * 16);
}

void DrawGlobe(QPainter& p, bool filled) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Ink, 1));
    p.setBrush(filled ? QColor(0x9c, 0xd0, 0xf0) : QColor(Qt::white));
    p.drawEllipse(QPointF(8, 8), 6.5, 6.5);
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(QPointF(8, 8), 3, 6.5);
    p.drawLine(QPointF(1.5, 8), QPointF(14.5, 8));
}

void DrawCube(QPainter& p, bool filled) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Ink, 1));
    const QPolygonF front({{2, 5}, {11, 5}, {11, 14}, {2, 14}});
    const QPolygonF top({{2, 5}, {5, 2}, {14, 2}, {11, 5}});
    const QPolygonF side({{11, 5}, {14, 2}, {14, 11}, {11, 14}});
    p.setBrush(filled ? Blue : QColor(Qt::white));
    p.drawPolygon(front);
    p.setBrush(filled ? Blue.lighter(140) : QColor(0xe8, 0xe8, 0xe8));
    p.drawPolygon(top);
    p.setBrush(filled ? Blue.darker(130) : QColor(0xd0, 0xd0, 0xd0));
    p.drawPolygon(side);
}

void DrawTogether(QPainter& p) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Green, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (qreal y : {4.5, 11.5}) {
        p.drawLine(QPointF(2, y), QPointF(13, y));
        p.drawPolyline(QPolygonF({{10, y - 3}, {13, y}, {10, y + 3}}));
    }
}

void DrawInOrder(QPainter& p) {
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(Blue);
    for (int row = 0; row < 3; ++row) {
        p.drawRoundedRect(QRectF(1, 1 + row * 5, 4, 4), 1, 1);
        p.fillRect(QRectF(7 + row, 2 + row * 5, 8 - row, 2), Ink);
    }
}

QImage Draw(int image) {
    QImage icon(Size, Size, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    QPainter p(&icon);
    const std::array<std::function<void(QPainter&)>, 11> pictures = {
        [](QPainter&) {},
        [](QPainter& q) { DrawGlobe(q, false); },
        [](QPainter& q) { DrawGlobe(q, true); },
        [](QPainter& q) { DrawCamera(q, false); },
        [](QPainter& q) { DrawCamera(q, true); },
        [](QPainter& q) { DrawLight(q, false); },
        [](QPainter& q) { DrawLight(q, true); },
        [](QPainter& q) { DrawCube(q, false); },
        [](QPainter& q) { DrawCube(q, true); },
        DrawTogether,
        DrawInOrder,
    };
    if (image == kSound)
        DrawSound(p);
    else if (image < static_cast<int>(pictures.size()))
        pictures[static_cast<size_t>(image)](p);
    else
        DrawNumber(p, image - 10);
    return icon;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <output folder>\n", argv[0]);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "cannot make %s\n", argv[1]);
        return 1;
    }
    for (int image = 0; image <= kSound; ++image) {
        const QString name = QStringLiteral("icon_%1.png").arg(image, 2, 10, QLatin1Char('0'));
        if (!Draw(image).save(folder.filePath(name))) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(name));
            return 1;
        }
    }
    return 0;
}
