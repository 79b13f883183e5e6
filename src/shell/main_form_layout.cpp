// The main window's client area and the picture buttons that no panel makes.
#include "shell/main_form.h"

#include "controls/named_tab_bar.h"
#include "controls/picture_button.h"
#include "shell/main_form_area.h"
#include "world/open_world.h"

#include <QAction>

namespace vessa {

QWidget* MainForm::buildArea(std::initializer_list<QWidget*> panels) {
    area_ = new MainFormArea([this] { return world_.status().SceneScriptTab(); }, this);
    // The panels stay as the owners of their controls' work; the area shows the controls.
    for (QWidget* panel : panels) {
        panel->setParent(area_);
        panel->hide();
    }
    buildPictureButtons(area_);
    new TabPictures(*switchTab_, {QStringLiteral("TabOpeningScene"),
                                  QStringLiteral("TabAnimations"), QStringLiteral("TabEvents")});
    area_->adoptControls(this);
    return area_;
}

void MainForm::buildPictureButtons(QWidget* parent) {
    // Each does what its menu entry does, and is off while the entry is: a command not
    // built yet is never a button that does nothing.
    const auto likeMenuEntry = [&](const char* control, const char* picture, const QString& text,
                                   const char* menuEntry) {
        auto* button = new PictureButton(QString::fromLatin1(picture), text, parent);
        button->setObjectName(QString::fromLatin1(control));
        QAction* entry = findChild<QAction*>(QString::fromLatin1(menuEntry));
        button->setEnabled(entry->isEnabled());
        connect(entry, &QAction::changed, button,
                [button, entry] { button->setEnabled(entry->isEnabled()); });
        connect(button, &QToolButton::clicked, entry, &QAction::trigger);
        return button;
    };
    lastAddingButton_ =
        likeMenuEntry("MakeObjectButton", "MakeObject", tr("Make Object"), "mnuMakeObject");
    likeMenuEntry("HelpButton", "Help", tr("Help"), "HelpViewMenuButton");
    likeMenuEntry("TeachMe2Button", "TeachMe", tr("Teach Me"), "HelpViewMenuButton");

    auto* makeAnimation =
        new PictureButton(QStringLiteral("MakeAnimation"), tr("Make Animation"), parent);
    makeAnimation->setObjectName(QStringLiteral("MakeAnimation"));
    // A new animation as soon as the button goes down, as the blank space's menu makes one.
    connect(makeAnimation, &QToolButton::pressed, this,
            [this] { world_.script().AddNewAnimation(); });
}

} // namespace vessa
