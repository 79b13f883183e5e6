#include "shell/recent_files_menu.h"

#include "gateway/engine_link.h"
#include "shell/window_settings.h"
#include "world/world_folder.h"

#include <QAction>
#include <QMenu>

namespace vessa {

RecentFilesMenu::RecentFilesMenu(QMenu& fileMenu, QAction* before, EngineLink& engine, Hooks hooks)
    : QObject(&fileMenu), engine_(engine), hooks_(std::move(hooks)) {
    for (int index = 0; index < kRecentFilesShown; ++index) {
        auto* item = new QAction(&fileMenu);
        item->setObjectName(QStringLiteral("RecentFilesMenu%1").arg(index));
        item->setVisible(false);
        connect(item, &QAction::triggered, this, [this, index] { RecentFilesMenu_Click(index); });
        fileMenu.insertAction(before, item);
        items_ << item;
    }
    separator_ = fileMenu.insertSeparator(before);
    separator_->setVisible(false);
}

QList<QPair<QString, QString>> RecentFilesMenu::rowsOf(const QVariant& list) {
    QList<QPair<QString, QString>> rows;
    for (const QVariant& row : list.toList()) {
        const QVariantList pair = row.toList();
        if (pair.size() == 2)
            rows.append({pair[0].toString(), pair[1].toString()});
    }
    return rows;
}

void RecentFilesMenu::restore(const QList<QPair<QString, QString>>& rows) {
    for (const auto& [name, path] : rows)
        engine_.call(QStringLiteral("AddRecentFile"), {name, path});
    refresh();
}

QList<QPair<QString, QString>> RecentFilesMenu::rows() const {
    return rowsOf(engine_.call(QStringLiteral("GetRecentFiles")));
}

void RecentFilesMenu::refresh() {
    if (engine_.isSet())
        show(rows());
}

void RecentFilesMenu::show(const QList<QPair<QString, QString>>& rows) {
    for (int index = 0; index < items_.size(); ++index) {
        QAction* item = items_[index];
        const bool used = index < rows.size();
        item->setVisible(used);
        item->setText(used ? recentFileCaption(index, rows[index].second) : QString());
        item->setData(used ? rows[index].second : QString());
    }
    separator_->setVisible(!rows.isEmpty());
}

void RecentFilesMenu::RecentFilesMenu_Click(int index) {
    hooks_.switchTab();
    const QString path = items_.value(index)->data().toString();
    if (!isWorldFolder(path)) {
        hooks_.message(QStringLiteral("Vessa47 - World Load"), notAWorldMessage(path));
        show(rowsOf(engine_.call(QStringLiteral("DeleteRecentFile"), {path})));
        return;
    }
    if (hooks_.isWorldDirty() && hooks_.saveChangesPrompt() == 2)
        return;
    hooks_.loadWorld(path);
}

} // namespace vessa
