#include "controls/picture_button.h"

#include <QEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QTabBar>

namespace vessa {

namespace {

constexpr int kPictureSide = 32;
constexpr int kCaptionGap = 6;

QString withoutMnemonic(QString text) {
    return text.remove(QRegularExpression(QStringLiteral("&(?!&)")));
}

} // namespace

QIcon buttonPicture(const QString& picture, const QString& state) {
    QIcon icon;
    const QString stem = QStringLiteral(":/buttons/") + picture + state;
    icon.addFile(stem + QStringLiteral(".png"), QSize(kPictureSide, kPictureSide));
    icon.addFile(stem + QStringLiteral("@2x.png"), QSize(2 * kPictureSide, 2 * kPictureSide));
    return icon;
}

PictureButton::PictureButton(const QString& picture, const QString& text, QWidget* parent)
    : QToolButton(parent), picture_(picture) {
    setText(text);
    setToolTip(withoutMnemonic(text));
    setFocusPolicy(Qt::StrongFocus);
    setIconSize(QSize(kPictureSide, kPictureSide));
    setAttribute(Qt::WA_Hover);
}

void PictureButton::setPicture(const QString& picture) {
    picture_ = picture;
    update();
}

void PictureButton::setShowsCaption(bool shows) {
    showsCaption_ = shows;
    updateGeometry();
    update();
}

QString PictureButton::shownState() const {
    if (!isEnabled())
        return QStringLiteral("Disable");
    if (isDown())
        return QStringLiteral("Down");
    return pointerOver_ ? QStringLiteral("High") : QStringLiteral("Up");
}

QSize PictureButton::sizeHint() const {
    if (!showsCaption_)
        return {kPictureSide, kPictureSide};
    const int caption = fontMetrics().horizontalAdvance(withoutMnemonic(text()));
    return {kPictureSide + kCaptionGap + caption + kCaptionGap, kPictureSide};
}

bool PictureButton::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::HoverEnter:
        pointerOver_ = true;
        update();
        break;
    case QEvent::Leave:
    case QEvent::HoverLeave:
        pointerOver_ = false;
        update();
        break;
    default:
        break;
    }
    return QToolButton::event(event);
}

void PictureButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int side = std::min(height(), kPictureSide);
    const QRect picture(0, (height() - side) / 2, side, side);
    buttonPicture(picture_, shownState()).paint(&painter, picture);
    if (showsCaption_) {
        const QRect caption = rect().adjusted(side + kCaptionGap, 0, 0, 0);
        style()->drawItemText(&painter, caption,
                              Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(),
                              isEnabled(), text(), QPalette::ButtonText);
    }
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

TabPictures::TabPictures(QTabBar& tabs, const QStringList& pictures)
    : QObject(&tabs), tabs_(tabs), pictures_(pictures) {
    tabs_.setIconSize(QSize(kPictureSide, kPictureSide) * 3 / 4);
    tabs_.setMouseTracking(true);
    tabs_.installEventFilter(this);
    connect(&tabs_, &QTabBar::currentChanged, this, &TabPictures::show);
    show();
}

QString TabPictures::shownState(int tab) const {
    return shown_.value(tab);
}

bool TabPictures::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseMove: {
        const int over = tabs_.tabAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        if (over != pointerOver_) {
            pointerOver_ = over;
            show();
        }
        break;
    }
    case QEvent::Leave:
        pointerOver_ = -1;
        show();
        break;
    default:
        break;
    }
    return false;
}

void TabPictures::show() {
    shown_.clear();
    for (int tab = 0; tab < tabs_.count() && tab < pictures_.size(); ++tab) {
        const QString state = tab == tabs_.currentIndex() ? QStringLiteral("Down")
                              : tab == pointerOver_       ? QStringLiteral("High")
                                                          : QStringLiteral("Up");
        shown_ << state;
        tabs_.setTabIcon(tab, buttonPicture(pictures_[tab], state));
    }
}

} // namespace vessa
