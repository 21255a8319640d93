// The power fails while the file changes its shape: indexes split, pages are added, long values come and go.
#include "jet/database/small_diary.h"
#include "jet/disk/page.h"
#include "power_loss/diaries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace power_loss {
namespace {

using jet::test::values;
using testing::SizeIs;

const std::string kPath = jet::test::kDiaryPath;

/// Index pages of the whole file.
struct IndexPages {
    std::size_t nodes = 0;
    std::size_t leaves = 0;
    bool operator==(const IndexPages&) const = default;
};

IndexPages operator-(const IndexPages& a, const IndexPages& b)
{
    return {a.nodes - b.nodes, a.leaves - b.leaves};
}

IndexPages indexPagesOf(const jet::Bytes& diary)
{
    // The first byte of a page tells its kind.
    constexpr std::byte kNode{3};
    constexpr std::byte kLeaf{4};
    IndexPages pages;
    for (std::size_t page = 0; page < diary.size(); page += jet::kPageSize) {
        pages.nodes += diary[page] == kNode ? 1U : 0U;
        pages.leaves += diary[page] == kLeaf ? 1U : 0U;
    }
    return pages;
}

/// A food whose name has a hundred characters, so that few fit into an index page. Names come in no order.
void addFood(jet::Database& diary, int number)
{
    std::u16string name;
    for (int rest = number * 7919 % 10007; name.size() < 100; rest = rest * 31 % 10007 + 1) {
        name += static_cast<char16_t>(u'a' + rest % 26);
    }
    jet::Table& foods = diary.table("Foods");
    foods.insert(values(foods, {{"MealNo", std::int32_t{1}},
                                {"Position", static_cast<std::int16_t>(10 + number)},
                                {"Name", name},
                                {"Grams", 10.0F}}));
}

void addFoods(jet::Database& diary, int first, int count)
{
    diary.begin();
    for (int number = first; number < first + count; ++number) {
        addFood(diary, number);
    }
    diary.commit();
}

/// A diary to which one more food, that of the number, adds index pages.
struct Split {
    Files before;
    int food = 0;
};

/// The first such diary with at least so many foods. They are added in batches, the batch that matters one by one.
Split splitThatAdds(const IndexPages& pages, const Files& start, int foods)
{
    constexpr int kBatch = 50;
    constexpr int kMostFoods = 3000;
    jet::MemoryFileSystem disk;
    disk.setContent(kPath, start.at(kPath));
    for (; foods < kMostFoods; foods += kBatch) {
        const jet::Bytes before = disk.content(kPath);
        addFoods(*jet::Database::open(disk, kPath), foods, kBatch);
        const IndexPages added = indexPagesOf(disk.content(kPath)) - indexPagesOf(before);
        if (added.nodes < pages.nodes || added.leaves < pages.leaves) {
            continue;
        }
        jet::MemoryFileSystem slowly;
        slowly.setContent(kPath, before);
        for (int food = foods; food < foods + kBatch; ++food) {
            const jet::Bytes beforeFood = slowly.content(kPath);
            addFood(*jet::Database::open(slowly, kPath), food);
            if (indexPagesOf(slowly.content(kPath)) - indexPagesOf(beforeFood) == pages) {
                return {{{kPath, beforeFood}}, food};
            }
        }
    }
    ADD_FAILURE() << "no food split the index";
    return {start, foods};
}

void expectSplitSurvives(const Split& split)
{
    const Findings findings = losePowerDuring(
        split.before, [&](jet::FileSystem& disk) { addFood(*jet::Database::open(disk, kPath), split.food); });
    ASSERT_THAT(findings.history, SizeIs(2));
    EXPECT_EQ(rowCountIn(findings.history[1], "Foods"), rowCountIn(findings.history[0], "Foods") + 1);
}

constexpr IndexPages kLeafSplit{.nodes = 0, .leaves = 1};
/// The root becomes a node over two leaves. A node below the root that splits adds the same, later on.
constexpr IndexPages kRootLeafSplit{.nodes = 1, .leaves = 1};
constexpr IndexPages kRootNodeSplit{.nodes = 2, .leaves = 1};

TEST(PowerLoss, WhileTheRootLeafOfAnIndexSplitsLeavesItWhole)
{
    expectSplitSurvives(splitThatAdds(kRootLeafSplit, smallDiary([](jet::Database&) {}), 0));
}

TEST(PowerLoss, WhileALeafOfAnIndexSplitsLeavesItWhole)
{
    expectSplitSurvives(splitThatAdds(kLeafSplit, smallDiary([](jet::Database&) {}), 0));
}

TEST(PowerLoss, WhileANodeOfAnIndexSplitsLeavesItWhole)
{
    const Split root = splitThatAdds(kRootNodeSplit, smallDiary([](jet::Database&) {}), 0);
    expectSplitSurvives(root);
    const Split node = splitThatAdds(kRootLeafSplit, root.before, root.food);
    EXPECT_GT(node.food, root.food);
    expectSplitSurvives(node);
}

TEST(PowerLoss, WhileACommitAddsPagesLeavesThemInUseOrGone)
{
    const Files before = smallDiary([](jet::Database&) {});
    const Findings findings =
        losePowerDuring(before, [](jet::FileSystem& disk) { addFoods(*jet::Database::open(disk, kPath), 0, 200); });
    ASSERT_THAT(findings.history, SizeIs(2));
    EXPECT_GT(findings.history[1].size(), findings.history[0].size() + 10 * jet::kPageSize);
}

TEST(PowerLoss, WhileLongValuesComeChangeAndGoLeavesThemWhole)
{
    const auto notes = [](std::size_t length, char16_t letter) { return std::u16string(length, letter); };
    const Findings findings = losePowerDuring(smallDiary([](jet::Database&) {}), [&](jet::FileSystem& disk) {
        const auto diary = jet::Database::open(disk, kPath);
        jet::Table& readings = diary->table("Readings");
        const jet::RowPointer reading = readings.insert(values(readings, {{"Notes", notes(9000, u'n')}}));
        readings.update(reading, values(readings, {{"Notes", notes(20000, u'\u0431')}}));
        readings.update(reading, values(readings, {{"Notes", notes(600, u's')}}));
        readings.erase(reading);
    });
    ASSERT_THAT(findings.history, SizeIs(5));
    EXPECT_EQ(rowCountIn(findings.history[1], "Readings"), rowCountIn(findings.history[0], "Readings") + 1);
    EXPECT_THAT(rowsIn(findings.history[1], "Readings"), testing::HasSubstr(std::string(9000, 'n')));
    EXPECT_EQ(rowsIn(findings.history[4], "Readings"), rowsIn(findings.history[0], "Readings"));
}

TEST(PowerLoss, WhileAMealGoesWithItsFoodsLeavesAllOrNone)
{
    const Findings findings = losePowerDuring(smallDiary([](jet::Database&) {}), [](jet::FileSystem& disk) {
        const auto diary = jet::Database::open(disk, kPath);
        jet::Table& meals = diary->table("Meals");
        const auto first = meals.scan();
        ASSERT_TRUE(first->next());
        meals.erase(first->row().address());
    });
    ASSERT_THAT(findings.history, SizeIs(2));
    EXPECT_EQ(rowCountIn(findings.history[0], "Foods"), 4U);
    EXPECT_EQ(rowCountIn(findings.history[1], "Foods"), 2U);
}

} // namespace
} // namespace power_loss
