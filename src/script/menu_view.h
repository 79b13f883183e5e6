#pragma once

#include "script/script_request.h"

#include <QMenu>
#include <QPointer>

#include <functional>

namespace vessa {

// Fills menu with rows: a row with rows of its own opens a menu of them, "-" is a
// separator, a checkable row shows its check and the default row is bold. Choosing a row
// calls chosen with it and, for a row of menu itself, its index (-1 deeper down).
// Each menu is named for assistive technology by its title.
void fillMenu(QMenu& menu, const std::vector<MenuRow>& rows,
              const std::function<void(int row, const MenuRow& chosen)>& chosen);

// Closes the menu open, if any, and pops up in its place a new one of rows at point,
// named control and titled names.second, over parent; it deletes itself once closed.
void popUpMenu(QPointer<QMenu>& open, QWidget* parent, const std::pair<QString, QString>& names,
               const std::vector<MenuRow>& rows, const QPoint& point,
               const std::function<void(int row, const MenuRow& chosen)>& chosen);

} // namespace vessa
