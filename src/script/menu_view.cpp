#include "script/menu_view.h"

namespace vessa {

namespace {

QString withoutAmpersand(QString title) {
    return title.remove(u'&');
}

void fillLevel(QMenu& menu, const std::vector<MenuRow>& rows, bool top,
               const std::function<void(int, const MenuRow&)>& chosen) {
    for (size_t index = 0; index < rows.size(); ++index) {
        const MenuRow& row = rows[index];
        QAction* action = nullptr;
        if (row.IsSeparator()) {
            action = menu.addSeparator();
        } else if (!row.Rows.empty()) {
            QMenu* below = menu.addMenu(row.Caption);
            below->setAccessibleName(withoutAmpersand(row.Caption));
            fillLevel(*below, row.Rows, false, chosen);
            action = below->menuAction();
        } else {
            action = menu.addAction(row.Caption);
            const int position = top ? static_cast<int>(index) : -1;
            QObject::connect(action, &QAction::triggered, &menu,
                             [chosen, position, row] { chosen(position, row); });
        }
        if (!row.Name.isEmpty())
            action->setObjectName(row.Name);
        action->setVisible(row.Visible);
        action->setEnabled(row.Enabled);
        action->setCheckable(row.Checkable);
        action->setChecked(row.Checked);
        if (row.Default) {
            QFont bold = action->font();
            bold.setBold(true);
            action->setFont(bold);
        }
    }
}

} // namespace

void fillMenu(QMenu& menu, const std::vector<MenuRow>& rows,
              const std::function<void(int row, const MenuRow& chosen)>& chosen) {
    menu.setAccessibleName(withoutAmpersand(menu.title()));
    fillLevel(menu, rows, true, chosen);
}

void popUpMenu(QPointer<QMenu>& open, QWidget* parent, const std::pair<QString, QString>& names,
               const std::vector<MenuRow>& rows, const QPoint& point,
               const std::function<void(int row, const MenuRow& chosen)>& chosen) {
    if (open)
        open->close();
    open = new QMenu(names.second, parent);
    open->setObjectName(names.first);
    open->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu(*open, rows, chosen);
    open->popup(point);
}

} // namespace vessa
