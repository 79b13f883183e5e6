#pragma once

#include <QObject>
#include <QStringList>
#include <QToolButton>

class QTabBar;

namespace vessa {

// A button shown by its pictures, drawn at build time (":/buttons/<picture><state>.png"
// with its "@2x" for screens of twice the density): Up at rest, High while the pointer is
// over it, Down while it is pressed, Disable while it is disabled. Its text stays its
// caption for the keyboard (the underlined letter) and for a screen reader, and is its
// tool tip; a button that shows its caption has it beside the picture.
class PictureButton : public QToolButton {
    Q_OBJECT
public:
    PictureButton(const QString& picture, const QString& text, QWidget* parent = nullptr);

    // Another set of pictures, for a button that changes what it does (Perform Again).
    void setPicture(const QString& picture);
    QString picture() const { return picture_; }
    void setShowsCaption(bool shows);
    // "Up", "High", "Down" or "Disable": the picture shown now.
    QString shownState() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString picture_;
    bool showsCaption_ = false;
    bool pointerOver_ = false;
};

// The tabs' pictures: each tab of `tabs` shows the picture of its name, Down while it is
// the tab chosen, High while the pointer is over it and Up otherwise.
class TabPictures : public QObject {
    Q_OBJECT
public:
    TabPictures(QTabBar& tabs, const QStringList& pictures);
    QString shownState(int tab) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show();

    QTabBar& tabs_;
    QStringList pictures_;
    int pointerOver_ = -1;
    QStringList shown_;
};

// The picture of a button in one of its states, at both resolutions.
QIcon buttonPicture(const QString& picture, const QString& state);

} // namespace vessa
