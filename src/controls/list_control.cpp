#include "controls/list_control.h"

#include "base/run_time_error.h"

#include <algorithm>

namespace vessa {

ListControl::ListControl(QStringList columnHeaders) : headers_(std::move(columnHeaders)) {
}

template <typename Call> void ListControl::Notify(Call call) {
    for (ListObserver* observer : observers_)
        call(*observer);
}

void ListControl::Clear() {
    Notify([](ListObserver& o) { o.AboutToClear(); });
    rows_.clear();
    byKey_.clear();
    selected_ = nullptr;
    Notify([](ListObserver& o) { o.Cleared(); });
}

ListRow* ListControl::Add(int position, const QString& key) {
    if (!key.isEmpty() && byKey_.contains(key))
        throw RunTimeError(RunTimeError::KeyNotUnique, "Key is not unique in collection",
                           "ListControl.Add");
    if (position < 0 || position > Count())
        position = Count();
    Notify([&](ListObserver& o) { o.RowAboutToBeAdded(position); });
    auto row = std::make_unique<ListRow>();
    row->key_ = key;
    row->index_ = nextIndex_++;
    ListRow* added = row.get();
    rows_.insert(rows_.begin() + position, std::move(row));
    if (!key.isEmpty())
        byKey_.insert(key, added);
    Notify([](ListObserver& o) { o.RowAdded(); });
    return added;
}

void ListControl::Remove(int position) {
    ListRow* row = Row(position);
    if (!row)
        throw RunTimeError::Bounds("ListControl.Remove");
    Notify([&](ListObserver& o) { o.RowAboutToBeRemoved(position); });
    if (selected_ == row)
        selected_ = nullptr;
    byKey_.remove(row->key_);
    rows_.erase(rows_.begin() + position);
    Notify([](ListObserver& o) { o.RowRemoved(); });
}

void ListControl::SetSubItem(ListRow* row, int column, const QString& text) {
    while (row->subItems_.size() <= column)
        row->subItems_.append(QString());
    if (row->subItems_[column] == text)
        return;
    row->subItems_[column] = text;
    const int position = PositionOf(row);
    Notify([&](ListObserver& o) { o.RowChanged(position); });
}

ListRow* ListControl::Row(int position) const {
    if (position < 0 || position >= Count())
        return nullptr;
    return rows_[static_cast<size_t>(position)].get();
}

ListRow* ListControl::RowByKey(const QString& key) const {
    return byKey_.value(key, nullptr);
}

int ListControl::PositionOf(const ListRow* row) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [row](const auto& owned) { return owned.get() == row; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void ListControl::SetSelectedItem(ListRow* row) {
    if (selected_ == row)
        return;
    selected_ = row;
    Notify([&](ListObserver& o) { o.SelectedItemChanged(row); });
}

void ListControl::AddObserver(ListObserver* observer) {
    observers_.push_back(observer);
}

void ListControl::RemoveObserver(ListObserver* observer) {
    observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

} // namespace vessa
