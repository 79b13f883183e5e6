// Draws the pictures of the window's picture buttons into the folder given as the only
// argument, each state of each button at two resolutions: <Name><State>.png at 32 x 32
// pixels and <Name><State>@2x.png at 64 x 64 for screens of twice the density. Run at
// build time; nothing drawn is committed.
//
// Buttons: MouseMove, MouseRaise, MouseTurnLR, MouseTurnFB, MouseTumble, MouseInspect.
// States: Up (at rest), High (under the pointer), Down (pressed), Selected (the tool
// chosen).
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>

namespace {

constexpr int kSide = 32;
const QColor Ink(0x20, 0x30, 0x50);

struct State {
    const char* name;
    QColor face;
    QColor edge;
    QColor ink;
};

const State kStates[] = {
    {"Up", QColor(0xe8, 0xea, 0xee), QColor(0xa0, 0xa6, 0xb0), Ink},
    {"High", QColor(0xff, 0xf4, 0xd0), QColor(0xe0, 0xa0, 0x20), Ink},
    {"Down", QColor(0xb8, 0xbe, 0xc8), QColor(0x60, 0x68, 0x78), Ink},
    {"Selected", QColor(0x2b, 0x6c, 0xc4), QColor(0x18, 0x40, 0x80), Qt::white},
};

void arrowHead(QPainter& p, QPointF tip, QPointF from) {
    const QLineF back(tip, from);
    QLineF left = back;
    left.setLength(5);
    left.setAngle(back.angle() + 35);
    QLineF right = back;
    right.setLength(5);
    right.setAngle(back.angle() - 35);
    QPainterPath head(tip);
    head.lineTo(left.p2());
    head.lineTo(right.p2());
    head.closeSubpath();
    p.fillPath(head, p.pen().color());
}

void arrow(QPainter& p, QPointF from, QPointF to) {
    p.drawLine(from, to);
    arrowHead(p, to, from);
}

// A ring with an arrow head, lying flat (wide) or standing (tall).
void turnArrow(QPainter& p, bool flat) {
    const QRectF ring = flat ? QRectF(6, 11, 20, 10) : QRectF(11, 6, 10, 20);
    p.drawArc(ring, 30 * 16, 300 * 16);
    const QPointF tip = flat ? QPointF(24.5, 13) : QPointF(19, 7.5);
    arrowHead(p, tip, flat ? QPointF(20, 16) : QPointF(16, 11));
}

const std::pair<const char*, std::function<void(QPainter&)>> kButtons[] = {
    {"MouseMove",
     [](QPainter& p) {
         arrow(p, {16, 16}, {16, 5});
         arrow(p, {16, 16}, {16, 27});
         arrow(p, {16, 16}, {5, 16});
         arrow(p, {16, 16}, {27, 16});
     }},
    {"MouseRaise",
     [](QPainter& p) {
         arrow(p, {16, 16}, {16, 4});
         arrow(p, {16, 16}, {16, 28});
         p.drawLine(QPointF(8, 16), QPointF(24, 16));
     }},
    {"MouseTurnLR",
     [](QPainter& p) {
         turnArrow(p, true);
     }},
    {"MouseTurnFB",
     [](QPainter& p) {
         turnArrow(p, false);
     }},
    {"MouseTumble",
     [](QPainter& p) {
         turnArrow(p, true);
         turnArrow(p, false);
     }},
    {"MouseInspect",
     [](QPainter& p) {
         p.drawEllipse(QRectF(6, 6, 14, 14));
         p.drawLine(QPointF(18, 18), QPointF(26, 26));
     }},
};

QImage draw(const State& state, const std::function<void(QPainter&)>& picture, int scale) {
    QImage image(kSide * scale, kSide * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(scale);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(state.edge, 1));
    p.setBrush(state.face);
    p.drawRoundedRect(QRectF(0.5, 0.5, kSide - 1, kSide - 1), 5, 5);
    p.setPen(QPen(state.ink, 2, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    picture(p);
    return image;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: vessa_button_pictures FOLDER\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(folder);
    for (const auto& [name, picture] : kButtons)
        for (const State& state : kStates)
            for (int scale : {1, 2}) {
                const QString file =
                    QStringLiteral("%1/%2%3%4.png")
                        .arg(folder, QString::fromLatin1(name), QString::fromLatin1(state.name),
                             scale == 2 ? QStringLiteral("@2x") : QString());
                if (!draw(state, picture, scale).save(file)) {
                    std::fprintf(stderr, "can't write %s\n", qPrintable(file));
                    return 1;
                }
            }
    return 0;
}
