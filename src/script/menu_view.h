#pragma once

#include "script/script_request.h"

#include <QMenu>

#include <functional>

namespace vessa {

// Fills menu with rows: a row with rows of its own opens a menu of them, "-" is a
// separator, a checkable row shows its check and the default row is bold. Choosing a row
// calls chosen with it and, for a row of menu itself, its index (-1 deeper down).
// Each menu is named for assistive technology by its title.
void fillMenu(QMenu& menu, const std::vector<MenuRow>& rows,
              const std::function<void(int row, const MenuRow& chosen)>& chosen);

} // namespace vessa
