#include "base/run_time_error.h"
#include "controls/list_control.h"
#include "controls/list_item_model.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

using namespace vessa;

TEST(ListControl, KeepsRowsByPositionAndUniqueKey) {
    ListControl list({"", "When", "Happens To", "Do Animation"});
    ListItemModel model(list);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);

    ListRow* start = list.Add(-1, "Key0");
    list.SetSubItem(start, 1, "World Start");
    ListRow* click = list.Add(0, "Key1");
    list.SetSubItem(click, 3, "Hop");

    EXPECT_EQ(list.PositionOf(start), 1);
    EXPECT_EQ(list.RowByKey("Key1"), click);
    EXPECT_EQ(model.data(model.index(1, 1), Qt::DisplayRole).toString(), "World Start");
    EXPECT_EQ(click->SubItems(2), "");
    EXPECT_THROW(list.Add(0, "Key0"), RunTimeError);

    list.SetSelectedItem(click);
    list.Remove(0);
    EXPECT_EQ(list.SelectedItem(), nullptr);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(model.rowCount(), 1);
}
