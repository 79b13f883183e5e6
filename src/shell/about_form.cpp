#include "shell/about_form.h"

#include "controls/accessible_names.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace vessa {

namespace {

const char* const kContributors[] = {
    "The Vessa47 team",
    "  Design of the world's language and the script tree",
    "  The engine: scene, animations, events and sounds",
    "  The windows, menus and editors",
    "  The gallery of objects and sounds",
    "  The paint and sketch tools",
    "  The guide and the example worlds",
    "  The web player",
};

const QString kAcknowledgements = QStringLiteral(
    "Vessa47 is built on free software: Qt, OpenSceneGraph, Python, pybind11, Assimp, "
    "OpenAL Soft, libsndfile, libzip, libcurl, Pyodide and three.js. Thank you to everyone "
    "who makes them.");

const QString kCopyright =
    QStringLiteral("Copyright \u00a9 The Vessa47 team. All rights reserved.");

} // namespace

AboutForm::AboutForm(const QString& version, QWidget* parent)
    : QDialog(parent), NameList_(new QListWidget(this)),
      VersionLabel_(new QLabel(QStringLiteral("Version 0.99"), this)) {
    setObjectName(QStringLiteral("AboutForm"));
    setWindowTitle(QStringLiteral("Vessa - About"));
    auto* picture = new QLabel(this);
    picture->setObjectName(QStringLiteral("AboutPicture"));
    picture->setPixmap(QApplication::windowIcon().isNull()
                           ? style()->standardIcon(QStyle::SP_ComputerIcon).pixmap(48, 48)
                           : QApplication::windowIcon().pixmap(48, 48));
    auto* name = new QLabel(QStringLiteral("<b>Vessa47</b>"), this);
    VersionLabel_->setObjectName(QStringLiteral("VersionLabel"));
    VersionLabel_->setText(QStringLiteral("Version ") + version);
    NameList_->setObjectName(QStringLiteral("NameList"));
    for (const char* contributor : kContributors)
        NameList_->addItem(QString::fromUtf8(contributor));
    auto* thanks = new QLabel(kAcknowledgements, this);
    thanks->setObjectName(QStringLiteral("AcknowledgementLabel"));
    thanks->setWordWrap(true);
    auto* copyright = new QLabel(kCopyright, this);
    copyright->setObjectName(QStringLiteral("CopyrightLabel"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("AboutOkButton"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* title = new QHBoxLayout;
    title->addWidget(picture);
    auto* words = new QVBoxLayout;
    words->addWidget(name);
    words->addWidget(VersionLabel_);
    title->addLayout(words, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(title);
    layout->addWidget(NameList_, 1);
    layout->addWidget(thanks);
    layout->addWidget(copyright);
    layout->addWidget(buttons);
    resize(420, 380);
    applyAccessibleNames(this);
}

} // namespace vessa
