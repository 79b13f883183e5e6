#pragma once

#include <QList>
#include <QObject>
#include <QPair>
#include <QString>

#include <functional>

class QAction;
class QMenu;

namespace vessa {

class EngineLink;

// The recent worlds at the foot of the File menu. The engine keeps the list in order
// while the program runs; this menu shows it, and opens a world when one is chosen.
class RecentFilesMenu : public QObject {
    Q_OBJECT
public:
    struct Hooks {
        std::function<void()> switchTab;
        std::function<bool()> isWorldDirty;
        // 2 when the user cancelled.
        std::function<int()> saveChangesPrompt;
        std::function<void(const QString& path)> loadWorld;
        std::function<void(const QString& title, const QString& text)> message;
    };

    // The items go into fileMenu before `before`.
    RecentFilesMenu(QMenu& fileMenu, QAction* before, EngineLink& engine, Hooks hooks);

    // The rows the settings kept go to the engine, and are shown.
    void restore(const QList<QPair<QString, QString>>& rows);
    // The engine's list as it stands now.
    QList<QPair<QString, QString>> rows() const;
    // Shows the engine's list: after a world was opened or saved.
    void refresh();
    void RecentFilesMenu_Click(int index);

private:
    void show(const QList<QPair<QString, QString>>& rows);
    static QList<QPair<QString, QString>> rowsOf(const QVariant& list);

    EngineLink& engine_;
    Hooks hooks_;
    QList<QAction*> items_;
    QAction* separator_;
};

} // namespace vessa
