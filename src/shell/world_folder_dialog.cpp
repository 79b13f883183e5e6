#include "shell/world_folder_dialog.h"

#include <QFileDialog>

namespace vessa {

QString chooseWorldFolder(QWidget* parent, const QString& caption, const QString& startIn) {
    QFileDialog dialog(parent, caption, startIn);
    dialog.setObjectName(QStringLiteral("WorldFolderDialog"));
    // Qt's own dialog: the same on every desktop, and reachable by the keyboard.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setFileMode(QFileDialog::Directory);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

} // namespace vessa
