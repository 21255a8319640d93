#include "reports/modTabs.h"

#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace reports {
namespace {

TEST(SetListTabStops, SetsTheStopsInTheirOrder)
{
    ReportList list;
    SetListTabStops(list, {30, 110, 160});
    EXPECT_EQ(list.tabStops(), QList<int>({30, 110, 160}));
    SetListTabStops(list, {80});
    EXPECT_EQ(list.tabStops(), QList<int>({80})) << "the former ones are gone";
}

TEST(SetListTabStops, ConvertsEachToALongInteger)
{
    ReportList list;
    SetListTabStops(list, {29.6, 30.5, 31.5});
    EXPECT_EQ(list.tabStops(), QList<int>({30, 30, 32})) << "halves go to the even number";
    try {
        SetListTabStops(list, {1e12});
        ADD_FAILURE() << "no overflow";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 6);
    }
}

} // namespace
} // namespace reports
