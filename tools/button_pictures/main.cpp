// Draws the pictures of the window's picture buttons into the folder given as the only
// argument, each state of each button at two resolutions: <Name><State>.png at 32 x 32
// pixels and <Name><State>@2x.png at 64 x 64 for screens of twice the density. Run at
// build time; nothing drawn is committed.
//
// The main window's buttons and tabs have the states Up (at rest), High (under the
// pointer), Down (pressed) and Disable; the mouse tools have Up, High, Down and Selected
// (the tool chosen). The names are listed again, for the build, in
// src/controls/CMakeLists.txt.
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int kSide = 32;
const QColor Ink(0x20, 0x30, 0x50);
const QColor Go(0x2a, 0x9d, 0x3c);
const QColor Halt(0xd8, 0x30, 0x28);
const QColor Amber(0xf0, 0xb0, 0x20);
const QColor Unlit(0x50, 0x50, 0x50);

struct State {
    const char* name;
    QColor face;
    QColor edge;
    QColor ink;
};

const State kUp{"Up", QColor(0xe8, 0xea, 0xee), QColor(0xa0, 0xa6, 0xb0), Ink};
const State kHigh{"High", QColor(0xff, 0xf4, 0xd0), QColor(0xe0, 0xa0, 0x20), Ink};
const State kDown{"Down", QColor(0xb8, 0xbe, 0xc8), QColor(0x60, 0x68, 0x78), Ink};
const State kSelected{"Selected", QColor(0x2b, 0x6c, 0xc4), QColor(0x18, 0x40, 0x80), Qt::white};
const State kDisable{"Disable", QColor(0xf2, 0xf2, 0xf2), QColor(0xc8, 0xc8, 0xc8),
                     QColor(0xa8, 0xa8, 0xa8)};

const std::vector<State> kMouseToolStates = {kUp, kHigh, kDown, kSelected};
const std::vector<State> kButtonStates = {kUp, kHigh, kDown, kDisable};

using Picture = std::function<void(QPainter&, const State&)>;

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

// A half turn back to the left (or, mirrored, forward to the right): undo and redo.
void turnBack(QPainter& p, bool forward) {
    p.save();
    if (forward) {
        p.translate(kSide, 0);
        p.scale(-1, 1);
    }
    p.drawArc(QRectF(9, 9, 16, 14), 90 * 16, -200 * 16);
    arrow(p, {17, 9}, {8, 9});
    p.restore();
}

// The small plus in the corner of the buttons that add something.
void plus(QPainter& p, const State& state) {
    p.save();
    p.setPen(QPen(state.name == kDisable.name ? state.ink : Go, 2.5, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(23, 20), QPointF(23, 28));
    p.drawLine(QPointF(19, 24), QPointF(27, 24));
    p.restore();
}

void cube(QPainter& p, QPointF at, double size) {
    const double d = size * 0.4;
    p.drawRect(QRectF(at.x(), at.y() + d, size, size));
    QPolygonF top;
    top << QPointF(at.x(), at.y() + d) << QPointF(at.x() + d, at.y())
        << QPointF(at.x() + size + d, at.y()) << QPointF(at.x() + size, at.y() + d);
    p.drawPolyline(top);
    p.drawLine(QPointF(at.x() + size + d, at.y()), QPointF(at.x() + size + d, at.y() + size));
    p.drawLine(QPointF(at.x() + size + d, at.y() + size),
               QPointF(at.x() + size, at.y() + size + d));
}

void lines(QPainter& p, double left, double top, int count) {
    for (int line = 0; line < count; ++line)
        p.drawLine(QPointF(left + (line % 2) * 3, top + line * 5),
                   QPointF(left + 14, top + line * 5));
}

void bolt(QPainter& p, QPointF at, double scale) {
    QPolygonF shape;
    for (const QPointF point : {QPointF(6, 0), QPointF(0, 9), QPointF(4, 9), QPointF(2, 16),
                                QPointF(9, 6), QPointF(5, 6), QPointF(7, 0)})
        shape << at + point * scale;
    p.drawPolygon(shape);
}

void play(QPainter& p, const State& state, QRectF area) {
    QPolygonF triangle;
    triangle << area.topLeft() << QPointF(area.right(), area.center().y()) << area.bottomLeft();
    p.save();
    p.setBrush(state.name == kDisable.name ? state.ink : Go);
    p.drawPolygon(triangle);
    p.restore();
}

// A traffic light with one of its lamps lit.
void light(QPainter& p, const State& state, int lit) {
    p.drawRoundedRect(QRectF(10, 3, 12, 26), 3, 3);
    const QColor colours[] = {Halt, Amber, Go};
    for (int lamp = 0; lamp < 3; ++lamp) {
        p.save();
        p.setPen(Qt::NoPen);
        p.setBrush(lamp == lit && state.name != kDisable.name ? colours[lamp] : Unlit);
        p.drawEllipse(QRectF(12.5, 5 + lamp * 8, 7, 7));
        p.restore();
    }
}

void questionMark(QPainter& p) {
    p.drawArc(QRectF(10, 5, 12, 11), 160 * 16, -250 * 16);
    QPainterPath stem(QPointF(20.5, 14));
    stem.quadTo(QPointF(16, 16), QPointF(16, 21));
    p.drawPath(stem);
    p.drawPoint(QPointF(16, 26));
}

struct Button {
    const char* name;
    const std::vector<State>& states;
    Picture picture;
};

const Button kButtons[] = {
    {"MouseMove", kMouseToolStates,
     [](QPainter& p, const State&) {
         arrow(p, {16, 16}, {16, 5});
         arrow(p, {16, 16}, {16, 27});
         arrow(p, {16, 16}, {5, 16});
         arrow(p, {16, 16}, {27, 16});
     }},
    {"MouseRaise", kMouseToolStates,
     [](QPainter& p, const State&) {
         arrow(p, {16, 16}, {16, 4});
         arrow(p, {16, 16}, {16, 28});
         p.drawLine(QPointF(8, 16), QPointF(24, 16));
     }},
    {"MouseTurnLR", kMouseToolStates,
     [](QPainter& p, const State&) {
         turnArrow(p, true);
     }},
    {"MouseTurnFB", kMouseToolStates,
     [](QPainter& p, const State&) {
         turnArrow(p, false);
     }},
    {"MouseTumble", kMouseToolStates,
     [](QPainter& p, const State&) {
         turnArrow(p, true);
         turnArrow(p, false);
     }},
    {"MouseInspect", kMouseToolStates,
     [](QPainter& p, const State&) {
         p.drawEllipse(QRectF(6, 6, 14, 14));
         p.drawLine(QPointF(18, 18), QPointF(26, 26));
     }},
    {"Undo", kButtonStates,
     [](QPainter& p, const State&) {
         turnBack(p, false);
         cube(p, {6, 20}, 6);
     }},
    {"UndoAnim", kButtonStates,
     [](QPainter& p, const State&) {
         turnBack(p, false);
         lines(p, 5, 21, 2);
     }},
    {"RedoAnim", kButtonStates,
     [](QPainter& p, const State&) {
         turnBack(p, true);
         lines(p, 13, 21, 2);
     }},
    {"AddObject", kButtonStates,
     [](QPainter& p, const State& state) {
         cube(p, {5, 6}, 12);
         plus(p, state);
     }},
    {"AddSound", kButtonStates,
     [](QPainter& p, const State& state) {
         QPolygonF speaker;
         speaker << QPointF(5, 11) << QPointF(9, 11) << QPointF(15, 6) << QPointF(15, 22)
                 << QPointF(9, 17) << QPointF(5, 17);
         p.drawPolygon(speaker);
         p.drawArc(QRectF(12, 8, 8, 12), -50 * 16, 100 * 16);
         plus(p, state);
     }},
    {"AddText", kButtonStates,
     [](QPainter& p, const State& state) {
         p.drawLine(QPointF(5, 22), QPointF(11, 5));
         p.drawLine(QPointF(11, 5), QPointF(17, 22));
         p.drawLine(QPointF(7.5, 15), QPointF(14.5, 15));
         plus(p, state);
     }},
    {"MakeObject", kButtonStates,
     [](QPainter& p, const State&) {
         p.drawEllipse(QRectF(5, 9, 14, 14));
         p.drawLine(QPointF(17, 20), QPointF(27, 6));
         p.drawLine(QPointF(27, 6), QPointF(28, 9));
     }},
    {"MakeAnimation", kButtonStates,
     [](QPainter& p, const State& state) {
         p.drawRect(QRectF(4, 6, 18, 14));
         for (double x : {7.0, 13.0, 19.0}) {
             p.drawPoint(QPointF(x, 8.5));
             p.drawPoint(QPointF(x, 17.5));
         }
         plus(p, state);
     }},
    {"MakeEvent", kButtonStates,
     [](QPainter& p, const State& state) {
         bolt(p, {5, 4}, 1.3);
         plus(p, state);
     }},
    {"Help", kButtonStates,
     [](QPainter& p, const State&) {
         questionMark(p);
     }},
    {"TeachMe", kButtonStates,
     [](QPainter& p, const State&) {
         QPolygonF board;
         board << QPointF(4, 12) << QPointF(16, 6) << QPointF(28, 12) << QPointF(16, 18);
         p.drawPolygon(board);
         p.drawLine(QPointF(9, 15), QPointF(9, 22));
         p.drawArc(QRectF(9, 17, 14, 8), 180 * 16, 180 * 16);
         p.drawLine(QPointF(26, 13), QPointF(26, 22));
     }},
    {"PerformScript", kButtonStates,
     [](QPainter& p, const State& state) {
         play(p, state, QRectF(9, 6, 16, 20));
     }},
    {"PerformScriptAgain", kButtonStates,
     [](QPainter& p, const State& state) {
         play(p, state, QRectF(11, 10, 10, 12));
         p.drawArc(QRectF(5, 5, 22, 22), 60 * 16, 280 * 16);
         arrowHead(p, {21, 6.5}, {17, 5});
     }},
    {"LightStop", kButtonStates,
     [](QPainter& p, const State& state) {
         light(p, state, 0);
     }},
    {"LightReset", kButtonStates,
     [](QPainter& p, const State& state) {
         light(p, state, 2);
     }},
    {"Go", kButtonStates,
     [](QPainter& p, const State& state) {
         p.save();
         p.setPen(
             QPen(state.name == kDisable.name ? state.ink : Go, 3, Qt::SolidLine, Qt::RoundCap));
         arrow(p, {6, 16}, {25, 16});
         p.restore();
     }},
    {"TabOpeningScene", kButtonStates,
     [](QPainter& p, const State&) {
         QPolygonF hills;
         hills << QPointF(4, 25) << QPointF(12, 13) << QPointF(17, 19) << QPointF(21, 15)
               << QPointF(28, 25);
         p.drawPolyline(hills);
         p.drawEllipse(QRectF(19, 5, 6, 6));
     }},
    {"TabAnimations", kButtonStates,
     [](QPainter& p, const State&) {
         lines(p, 6, 7, 4);
         arrow(p, {22, 8}, {22, 25});
     }},
    {"TabEvents", kButtonStates,
     [](QPainter& p, const State&) {
         p.drawRoundedRect(QRectF(6, 5, 11, 17), 5, 5);
         p.drawLine(QPointF(11.5, 5), QPointF(11.5, 12));
         bolt(p, {17, 12}, 1.0);
     }},
};

QImage draw(const State& state, const Picture& picture, int scale) {
    QImage image(kSide * scale, kSide * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(scale);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(state.edge, 1));
    p.setBrush(state.face);
    p.drawRoundedRect(QRectF(0.5, 0.5, kSide - 1, kSide - 1), 5, 5);
    p.setPen(QPen(state.ink, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    picture(p, state);
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
    for (const Button& button : kButtons)
        for (const State& state : button.states)
            for (int scale : {1, 2}) {
                const QString file = QStringLiteral("%1/%2%3%4.png")
                                         .arg(folder, QString::fromLatin1(button.name),
                                              QString::fromLatin1(state.name),
                                              scale == 2 ? QStringLiteral("@2x") : QString());
                if (!draw(state, button.picture, scale).save(file)) {
                    std::fprintf(stderr, "can't write %s\n", qPrintable(file));
                    return 1;
                }
            }
    return 0;
}
