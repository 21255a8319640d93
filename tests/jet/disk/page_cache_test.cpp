#include "jet/disk/page_cache.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

PageRef newPage()
{
    return std::make_shared<Page>();
}

TEST(PageCache, GivesBackWhatWasPutIn)
{
    PageCache cache(4);
    const PageRef page = newPage();
    cache.put(7, page);
    EXPECT_EQ(cache.find(7), page);
    EXPECT_EQ(cache.find(8), nullptr);
}

TEST(PageCache, ReplacesAPageOfTheSameNumber)
{
    PageCache cache(4);
    cache.put(7, newPage());
    const PageRef second = newPage();
    cache.put(7, second);
    EXPECT_EQ(cache.find(7), second);
    EXPECT_EQ(cache.size(), 1U);
}

TEST(PageCache, NeverHoldsMoreThanItsCapacity)
{
    PageCache cache(3);
    for (PageNumber number = 0; number < 100; ++number) {
        cache.put(number, newPage());
        EXPECT_LE(cache.size(), 3U);
        EXPECT_TRUE(cache.contains(number));
    }
}

TEST(PageCache, KeepsThePageThatIsAskedForAgainAndAgain)
{
    PageCache cache(3);
    cache.put(1000, newPage());
    for (PageNumber number = 0; number < 100; ++number) {
        EXPECT_NE(cache.find(1000), nullptr);
        cache.put(number, newPage());
    }
}

TEST(PageCache, AFullCacheOfAskedPagesStillTakesANewOne)
{
    PageCache cache(2);
    cache.put(1, newPage());
    cache.put(2, newPage());
    EXPECT_NE(cache.find(1), nullptr);
    EXPECT_NE(cache.find(2), nullptr);
    cache.put(3, newPage());
    EXPECT_TRUE(cache.contains(3));
    EXPECT_EQ(cache.size(), 2U);
}

TEST(PageCache, ClearingForgetsAll)
{
    PageCache cache(2);
    cache.put(1, newPage());
    cache.clear();
    EXPECT_EQ(cache.find(1), nullptr);
    EXPECT_EQ(cache.size(), 0U);
}

TEST(PageCache, HoldsAtLeastOnePage)
{
    PageCache cache(0);
    cache.put(1, newPage());
    EXPECT_TRUE(cache.contains(1));
}

} // namespace
} // namespace jet
