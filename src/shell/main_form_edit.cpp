#include "script/script_panel.h"
#include "shell/edit_menu.h"
#include "shell/main_form.h"
#include "world/open_world.h"

#include <QAction>

namespace vessa {

void MainForm::connectEditCommands() {
    editMenu_ = std::make_unique<EditMenu>(
        world_.script(), world_.events(), [this] { return world_.status().SceneScriptTab(); },
        *this);
    const auto command = [this](const char* control, QKeySequence::StandardKey key,
                                void (EditCommands::*click)()) {
        findChild<QAction*>(QString::fromLatin1(control))->setShortcut(key);
        connectMenuCommand(control, [this, click] {
            editMenu_->run([click](EditCommands& commands) { (commands.*click)(); });
        });
    };
    command("EditCutMenuButton", QKeySequence::Cut, &EditCommands::EditCutMenuButton_Click);
    command("EditCopyMenuButton", QKeySequence::Copy, &EditCommands::EditCopyMenuButton_Click);
    command("EditPasteMenuButton", QKeySequence::Paste, &EditCommands::EditPasteMenuButton_Click);
    command("EditDeleteMenuButton", QKeySequence::Delete,
            &EditCommands::EditDeleteMenuButton_Click);
    // Once something is copied, Paste stays offered until a tab switch takes it away.
    connect(editMenu_.get(), &EditMenu::pasteOffered, this, [this] {
        scriptPanel_->SetPasteLineShown(true);
        findChild<QAction*>(QStringLiteral("EditPasteMenuButton"))->setEnabled(true);
    });
}

} // namespace vessa
