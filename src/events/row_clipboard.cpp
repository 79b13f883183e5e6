#include "events/row_clipboard.h"

#include "controls/list_control.h"

namespace vessa {

void RowClipboard::Copy(const ListRow& row) {
    for (int column = 1; column < static_cast<int>(values_.size()); ++column)
        values_[static_cast<size_t>(column)] = row.SubItems(column);
}

} // namespace vessa
