#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace vessa {

// One row of a report-style list: a unique Key and its columns, SubItems(0) being the
// first column.
class ListRow {
public:
    const QString& Key() const { return key_; }
    // An empty text for a column that was never set.
    QString SubItems(int column) const { return subItems_.value(column); }
    int Index() const { return index_; }

private:
    friend class ListControl;
    QString key_;
    QStringList subItems_;
    int index_ = 0;
};

// What a view of a list control hears.
class ListObserver {
public:
    virtual ~ListObserver() = default;
    virtual void RowAboutToBeAdded(int /*position*/) {}
    virtual void RowAdded() {}
    virtual void RowAboutToBeRemoved(int /*position*/) {}
    virtual void RowRemoved() {}
    virtual void RowChanged(int /*position*/) {}
    virtual void AboutToClear() {}
    virtual void Cleared() {}
    virtual void SelectedItemChanged(ListRow* /*row*/) {}
};

// The rows of a report-style list control, with unique keys and a selected row; the
// data of the list without its window. Positions count from 0.
class ListControl {
public:
    explicit ListControl(QStringList columnHeaders);

    const QStringList& ColumnHeaders() const { return headers_; }
    void Clear();
    // Inserts a row at position (the end when out of range). A taken key raises
    // RunTimeError::KeyNotUnique; "" is no key.
    ListRow* Add(int position, const QString& key);
    void Remove(int position);
    void SetSubItem(ListRow* row, int column, const QString& text);

    int Count() const { return static_cast<int>(rows_.size()); }
    ListRow* Row(int position) const;
    ListRow* RowByKey(const QString& key) const;
    int PositionOf(const ListRow* row) const;

    ListRow* SelectedItem() const { return selected_; }
    void SetSelectedItem(ListRow* row);

    void AddObserver(ListObserver* observer);
    void RemoveObserver(ListObserver* observer);

private:
    template <typename Call> void Notify(Call call);

    QStringList headers_;
    std::vector<std::unique_ptr<ListRow>> rows_; // Owned.
    QHash<QString, ListRow*> byKey_;
    ListRow* selected_ = nullptr;
    int nextIndex_ = 1;
    std::vector<ListObserver*> observers_; // Not owned.
};

} // namespace vessa
