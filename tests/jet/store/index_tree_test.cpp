#include "jet/store/index_tree.h"

#include "jet/format/index_page_content.h"
#include "jet/store/modelled_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>

namespace jet {
namespace {

using test::ModelledTree;
using test::TreeEntry;
using test::TreeFile;

Bytes numberKey(std::uint64_t number)
{
    Bytes key(5, std::byte{0x7F});
    putBigEndian(MutableBytes(key), 1, static_cast<std::uint32_t>(number));
    return key;
}

/// A key as texts make it: bytes from 02 on, ended by 01 00.
Bytes textKey(std::string_view text)
{
    Bytes key{std::byte{0x7F}};
    for (const char letter : text) {
        key.push_back(static_cast<std::byte>(letter));
    }
    key.push_back(std::byte{0x01});
    key.push_back(std::byte{0x00});
    return key;
}

RowPointer rowOf(std::uint32_t number)
{
    return {.page = 100 + number / 200, .row = static_cast<std::uint8_t>(number % 200)};
}

ErrorCode codeOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Error& error) {
        return error.code();
    }
    ADD_FAILURE() << "nothing was thrown";
    return ErrorCode::Io;
}

} // namespace

// --- Growing ---------------------------------------------------------------------------------------------------------

TEST(IndexTree, ANewTreeIsOneEmptyLeaf)
{
    ModelledTree tree;
    tree.expectSound();
    EXPECT_EQ(tree.pages(), std::vector<PageNumber>{tree.file.root});
    EXPECT_FALSE(tree.tree.find(numberKey(1)));
    EXPECT_FALSE(tree.tree.erase(numberKey(1), rowOf(1)));
    IndexCursor backwards = tree.tree.range({}, Direction::Backwards);
    EXPECT_FALSE(backwards.next());
    EXPECT_FALSE(backwards.next());
}

TEST(IndexTree, RisingKeysFillEachLeafBeforeTheNextOneBegins)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 20000; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    tree.expectSound();
    // Entries of nine bytes that share 3 bytes at least: a full leaf holds 601 or more; 34 leaves, a node and its root.
    EXPECT_LE(tree.pages().size(), 36U);
}

TEST(IndexTree, TheRootKeepsItsPageWhenItSplits)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 700; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    const IndexPage root(tree.file.pager.read(tree.file.root), tree.file.root);
    EXPECT_FALSE(root.isLeaf());
    EXPECT_EQ(root.size(), 1U) << "the full leaf";
    EXPECT_NE(root.header().tail, 0U) << "the new leaf";
    tree.expectSound();
}

TEST(IndexTree, ATailGrowsWithoutAChangeOfItsNode)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 700; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    const PageRef before = tree.file.pager.read(tree.file.root);
    tree.insert(numberKey(700), rowOf(700));
    EXPECT_EQ(tree.file.pager.read(tree.file.root), before);
    tree.expectSound();
}

TEST(IndexTree, FallingKeysAndRandomKeysMakeSoundTrees)
{
    ModelledTree falling;
    for (std::uint32_t i = 6000; i-- > 0;) {
        falling.insert(numberKey(i), rowOf(i));
    }
    falling.expectSound();

    std::mt19937 random(1);
    std::vector<std::uint32_t> numbers(6000);
    std::generate(numbers.begin(), numbers.end(), [&, i = 0U]() mutable { return i++; });
    std::shuffle(numbers.begin(), numbers.end(), random);
    ModelledTree shuffled;
    for (const std::uint32_t number : numbers) {
        shuffled.insert(numberKey(number), rowOf(number));
    }
    shuffled.expectSound();
}

TEST(IndexTree, EqualKeysAreKeptByRow)
{
    ModelledTree tree;
    for (std::uint32_t i = 5000; i-- > 0;) {
        tree.insert(numberKey(i % 3), rowOf(i));
    }
    tree.expectSound();
    EXPECT_EQ(tree.tree.find(numberKey(1)), rowOf(1));
    for (std::uint32_t i = 0; i < 5000; i += 2) {
        tree.erase(numberKey(i % 3), rowOf(i));
    }
    tree.expectSound();
    EXPECT_EQ(tree.tree.find(numberKey(0)), rowOf(3));
}

TEST(IndexTree, LongKeysMakeSeveralLevelsOfNodes)
{
    std::mt19937 random(8);
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 1500; ++i) {
        std::string text(700 + random() % 900, 'x');
        for (std::size_t k = 0; k < 5; ++k) {
            text[k * 100] = static_cast<char>('a' + random() % 8);
        }
        tree.insert(textKey(text), rowOf(i));
        if (i % 100 == 0) {
            tree.expectSound();
        }
    }
    tree.expectSound();
    while (!tree.model.empty()) {
        auto entry = tree.model.begin();
        std::advance(entry, static_cast<std::ptrdiff_t>(random() % tree.model.size()));
        const TreeEntry victim = *entry;
        tree.erase(victim.first, victim.second);
        if (tree.model.size() % 100 == 0) {
            tree.expectSound();
        }
    }
    EXPECT_EQ(tree.pages(), std::vector<PageNumber>{tree.file.root});
}

TEST(IndexTree, KeysOfTheGreatestLengthFitAndLongerOnesAreRefused)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 60; ++i) {
        Bytes key(kMaximumKeyLength, static_cast<std::byte>(i * 37 % 251));
        tree.insert(key, rowOf(i));
        tree.expectSound();
    }
    EXPECT_EQ(codeOf([&] { tree.tree.insert(Bytes(kMaximumKeyLength + 1, std::byte{1}), rowOf(1)); }),
              ErrorCode::ValueTooLong);
    tree.expectSound();
}

TEST(IndexTree, TheSameEntryTwiceIsRefused)
{
    ModelledTree tree;
    tree.insert(numberKey(1), rowOf(1));
    EXPECT_EQ(codeOf([&] { tree.tree.insert(numberKey(1), rowOf(1)); }), ErrorCode::Corrupt);
    tree.insert(numberKey(1), rowOf(2));
    tree.expectSound();
}

// --- Against the model -----------------------------------------------------------------------------------------------

namespace {

struct ModelCase {
    const char* name;
    std::function<Bytes(std::mt19937&)> makeKey;
    std::size_t batches;
    std::size_t batchSize;
};

std::ostream& operator<<(std::ostream& out, const ModelCase& value)
{
    return out << value.name;
}

class IndexTreeModel : public testing::TestWithParam<ModelCase>
{
};

std::string sharedText(std::mt19937& random, std::size_t shared, std::size_t own)
{
    std::string text(shared, 'm');
    for (std::size_t i = random() % own + 1; i-- > 0;) {
        text += static_cast<char>('a' + random() % 4);
    }
    return text;
}

} // namespace

TEST_P(IndexTreeModel, RandomChangesKeepTheTreeSoundAndEqualToTheModel)
{
    std::mt19937 random(20261121);
    ModelledTree tree;
    std::uint32_t nextRow = 0;
    for (std::size_t batch = 0; batch < GetParam().batches; ++batch) {
        const bool growing = batch * 2 < GetParam().batches;
        for (std::size_t i = 0; i < GetParam().batchSize; ++i) {
            if (tree.model.empty() || random() % 100 < (growing ? 75U : 20U)) {
                tree.insert(GetParam().makeKey(random), rowOf(nextRow++));
                continue;
            }
            const Bytes key = GetParam().makeKey(random);
            auto entry = tree.model.lower_bound({key, {}});
            if (entry == tree.model.end()) {
                entry = std::prev(entry);
            }
            const TreeEntry victim = *entry;
            ASSERT_EQ(tree.tree.find(victim.first), tree.model.lower_bound({victim.first, {}})->second);
            tree.erase(victim.first, victim.second);
            ASSERT_FALSE(tree.tree.erase(victim.first, victim.second));
        }
        tree.expectSound();
        if (HasFatalFailure()) {
            return;
        }
        for (int i = 0; i < 30; ++i) {
            KeyInterval interval{.from = GetParam().makeKey(random), .to = GetParam().makeKey(random)};
            if (i % 5 == 0) {
                interval.to.reset();
            } else if (i % 5 == 1) {
                interval.from.clear();
            }
            const auto begin = tree.model.lower_bound({interval.from, {}});
            const auto end = interval.to ? tree.model.lower_bound({*interval.to, {}}) : tree.model.end();
            std::vector<TreeEntry> wanted;
            if (!interval.to || interval.from < *interval.to) {
                wanted.assign(begin, end);
            }
            ASSERT_TRUE(tree.entries(interval, Direction::Forwards) == wanted);
            std::reverse(wanted.begin(), wanted.end());
            ASSERT_TRUE(tree.entries(interval, Direction::Backwards) == wanted);
        }
    }
    while (!tree.model.empty()) {
        const TreeEntry victim = random() % 2 == 0 ? *tree.model.begin() : *tree.model.rbegin();
        tree.erase(victim.first, victim.second);
    }
    tree.expectSound();
    EXPECT_EQ(tree.pages(), std::vector<PageNumber>{tree.file.root}) << "an emptied tree keeps its root alone";
    for (std::uint32_t i = 0; i < 1000; ++i) {
        tree.insert(GetParam().makeKey(random), rowOf(nextRow++));
    }
    tree.expectSound();
}

INSTANTIATE_TEST_SUITE_P(
    Keys, IndexTreeModel,
    testing::Values(
        ModelCase{"FewNumbersWithManyDuplicates", [](auto& random) { return numberKey(random() % 40); }, 10, 1000},
        ModelCase{"ManyNumbers", [](auto& random) { return numberKey(random()); }, 10, 4000},
        ModelCase{"ShortTexts", [](auto& random) { return textKey(sharedText(random, 0, 12)); }, 20, 1000},
        ModelCase{"LongTextsWithACommonStart", [](auto& random) { return textKey(sharedText(random, 200, 20)); }, 20,
                  600},
        ModelCase{"TextsOfVeryDifferentLength",
                  [](auto& random) { return textKey(sharedText(random, random() % 8 * 150, 300)); }, 20, 300},
        ModelCase{"TextsWithAStartThatFillsHalfAPage",
                  [](auto& random) { return textKey(sharedText(random, random() % 10 == 0 ? 0 : 1750, 9)); }, 20, 200}),
    [](const auto& test) { return std::string(test.param.name); });

// --- Looking up ------------------------------------------------------------------------------------------------------

TEST(IndexTree, EveryCombinationOfBoundsFindsItsRange)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 3000; i += 2) {
        tree.insert(numberKey(i), rowOf(i));
    }
    const auto count = [&](std::optional<std::uint32_t> from, std::optional<std::uint32_t> to, Direction direction) {
        KeyInterval interval;
        if (from) {
            interval.from = numberKey(*from);
        }
        if (to) {
            interval.to = numberKey(*to);
        }
        return tree.entries(interval, direction).size();
    };
    for (const Direction direction : {Direction::Forwards, Direction::Backwards}) {
        EXPECT_EQ(count({}, {}, direction), 1500U);
        EXPECT_EQ(count(0, {}, direction), 1500U);
        EXPECT_EQ(count(1, {}, direction), 1499U);
        EXPECT_EQ(count({}, 2998, direction), 1499U);
        EXPECT_EQ(count({}, 2999, direction), 1500U);
        EXPECT_EQ(count(1000, 2000, direction), 500U);
        EXPECT_EQ(count(1001, 2001, direction), 500U);
        EXPECT_EQ(count(1000, 1001, direction), 1U);
        EXPECT_EQ(count(1001, 1002, direction), 0U);
        EXPECT_EQ(count(1000, 1000, direction), 0U);
        EXPECT_EQ(count(2000, 1000, direction), 0U);
        EXPECT_EQ(count({}, 0, direction), 0U);
        EXPECT_EQ(count(2999, {}, direction), 0U);
    }
}

TEST(IndexTree, AKeyIsTakenByAnyOtherRow)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 2000; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    EXPECT_TRUE(tree.tree.isTaken(numberKey(700)));
    EXPECT_FALSE(tree.tree.isTaken(numberKey(700), rowOf(700)));
    EXPECT_TRUE(tree.tree.isTaken(numberKey(700), rowOf(701)));
    EXPECT_FALSE(tree.tree.isTaken(numberKey(2000)));
    Bytes longer = numberKey(700);
    longer.push_back(std::byte{0});
    EXPECT_FALSE(tree.tree.isTaken(longer)) << "a key is not taken by one that it begins with";
    tree.insert(numberKey(700), rowOf(9000));
    EXPECT_TRUE(tree.tree.isTaken(numberKey(700), rowOf(700)));
    EXPECT_TRUE(tree.tree.isTaken(numberKey(700), rowOf(9000)));
}

// A unique key whose last neighbour is on the leaf before: the search begins at the end of one leaf and goes on in the
// next.
TEST(IndexTree, EqualKeysThatSpanLeavesAreAllFound)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 3000; ++i) {
        tree.insert(numberKey(i < 100 ? 1 : 2), rowOf(i));
    }
    Bytes to = numberKey(2);
    to.push_back(std::byte{0});
    EXPECT_EQ(tree.entries({.from = numberKey(2), .to = to}, Direction::Forwards).size(), 2900U);
    EXPECT_EQ(tree.entries({.from = numberKey(2), .to = to}, Direction::Backwards).size(), 2900U);
    EXPECT_EQ(tree.tree.find(numberKey(2)), rowOf(100));
}

// --- Walking while the tree changes ----------------------------------------------------------------------------------

TEST(IndexCursor, GoesOnBehindTheEntryThatIsErasedUnderIt)
{
    for (const Direction direction : {Direction::Forwards, Direction::Backwards}) {
        ModelledTree tree;
        for (std::uint32_t i = 0; i < 3000; ++i) {
            tree.insert(numberKey(i), rowOf(i));
        }
        std::size_t steps = 0;
        for (IndexCursor cursor = tree.tree.range({}, direction); cursor.next(); ++steps) {
            const auto expected = static_cast<std::uint32_t>(direction == Direction::Backwards ? 2999 - steps : steps);
            ASSERT_EQ(cursor.key(), numberKey(expected));
            ASSERT_EQ(cursor.row(), rowOf(expected));
            tree.erase(Bytes(cursor.key()), cursor.row());
        }
        EXPECT_EQ(steps, 3000U);
        tree.expectSound();
    }
}

TEST(IndexCursor, SeesWhatIsAddedBehindItAndNotWhatIsAddedBeforeIt)
{
    std::mt19937 random(4);
    for (const Direction direction : {Direction::Forwards, Direction::Backwards}) {
        ModelledTree tree;
        for (std::uint32_t i = 0; i < 2000; ++i) {
            tree.insert(numberKey(i * 1000), rowOf(i));
        }
        std::uint32_t nextRow = 10000;
        Bytes last;
        std::size_t steps = 0;
        std::set<Bytes> expected;
        for (const TreeEntry& entry : tree.model) {
            expected.insert(entry.first);
        }
        for (IndexCursor cursor = tree.tree.range({}, direction); cursor.next(); ++steps) {
            if (!last.empty()) {
                ASSERT_EQ(cursor.key() < last, direction == Direction::Backwards);
            }
            last = cursor.key();
            ASSERT_EQ(expected.count(last), 1U);
            expected.erase(last);
            for (int i = 0; i < 2 && nextRow < 13000; ++i) {
                const Bytes key = numberKey(random() % 2000 * 1000 + 1 + nextRow % 900);
                if (tree.model.lower_bound({key, {}}) != tree.model.end() &&
                    tree.model.lower_bound({key, {}})->first == key) {
                    continue;
                }
                tree.insert(key, rowOf(nextRow++));
                if ((key < last) == (direction == Direction::Backwards)) {
                    expected.insert(key);
                }
            }
        }
        EXPECT_TRUE(expected.empty());
        EXPECT_GE(steps, 2000U);
        tree.expectSound();
    }
}

TEST(IndexCursor, SurvivesTheReturnToASavepoint)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 2000; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    const Pager::Savepoint savepoint = tree.file.pager.savepoint();
    for (std::uint32_t i = 2000; i < 9000; ++i) {
        tree.tree.insert(numberKey(i), rowOf(i));
    }
    IndexCursor cursor = tree.tree.range({.from = numberKey(1990), .to = {}});
    for (std::uint32_t i = 1990; i < 1995; ++i) {
        ASSERT_TRUE(cursor.next());
    }
    tree.file.pager.rollbackTo(savepoint);
    for (std::uint32_t i = 1995; i < 2000; ++i) {
        ASSERT_TRUE(cursor.next());
        EXPECT_EQ(cursor.key(), numberKey(i));
    }
    EXPECT_FALSE(cursor.next());
    tree.expectSound();
}

// --- Damage ----------------------------------------------------------------------------------------------------------

namespace {

/// Everything that can be asked of a tree; gives Corrupt or an answer, but always ends.
void useTree(const IndexTree& tree)
{
    const auto tolerant = [](const std::function<void()>& action) {
        try {
            action();
        } catch (const Error& error) {
            ASSERT_TRUE(error.code() == ErrorCode::Corrupt || error.code() == ErrorCode::InvalidArgument)
                << error.what();
        }
    };
    tolerant([&] { (void)tree.find(numberKey(1234)); });
    for (const Direction direction : {Direction::Forwards, Direction::Backwards}) {
        tolerant([&] {
            for (IndexCursor cursor = tree.range({}, direction); cursor.next();) {
            }
        });
    }
    std::vector<TreeFault> faults;
    ASSERT_NO_THROW(faults = tree.check());
    tolerant([&] {
        IndexTree changed = tree;
        for (std::uint32_t i = 0; i < 50; ++i) {
            changed.insert(numberKey(i * 97 + 100000), rowOf(20000 + i));
            (void)changed.erase(numberKey(i * 53), rowOf(i * 53));
        }
    });
}

} // namespace

TEST(IndexTreeDamage, ALeafChainThatIsARingEnds)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 3000; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    const IndexPage root(tree.file.pager.read(tree.file.root), tree.file.root);
    const PageNumber first = root.child(0);
    const PageNumber last = root.header().tail;
    setNext(tree.file.pager.modify(last), first);
    setPrevious(tree.file.pager.modify(first), last);
    EXPECT_EQ(codeOf([&] { (void)tree.entries({}, Direction::Forwards); }), ErrorCode::Corrupt);
    EXPECT_EQ(codeOf([&] { (void)tree.entries({}, Direction::Backwards); }), ErrorCode::Corrupt);
    EXPECT_EQ(tree.tree.check().size(), 2U);
}

TEST(IndexTreeDamage, ANodeThatIsItsOwnChildEnds)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 3000; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    IndexPageContent root(IndexPage(tree.file.pager.read(tree.file.root), tree.file.root));
    root.header.tail = tree.file.root;
    root.encode(tree.file.pager.modify(tree.file.root));
    EXPECT_EQ(codeOf([&] { (void)tree.tree.find(numberKey(100000)); }), ErrorCode::Corrupt);
    EXPECT_FALSE(tree.tree.check().empty());
    useTree(tree.tree);
}

TEST(IndexTreeDamage, APageOfAnotherTableIsNotUsed)
{
    ModelledTree tree;
    tree.insert(numberKey(1), rowOf(1));
    const IndexTree other(tree.file.pager, 99, tree.file.root, tree.file.map);
    EXPECT_EQ(codeOf([&] { (void)other.find(numberKey(1)); }), ErrorCode::Corrupt);
    ASSERT_EQ(other.check().size(), 1U);
    EXPECT_EQ(other.check().front().page, tree.file.root);
}

TEST(IndexTreeDamage, ARootPastTheEndOfTheFileIsCorrupt)
{
    TreeFile file;
    const IndexTree tree(file.pager, TreeFile::kOwner, 1000000, file.map);
    EXPECT_EQ(codeOf([&] { (void)tree.find(numberKey(1)); }), ErrorCode::Corrupt);
    EXPECT_FALSE(tree.check().empty());
}

TEST(IndexTreeDamage, AWrongLinkStopsAChangeInsteadOfSpoilingAnotherPage)
{
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 3000; ++i) {
        tree.insert(numberKey(i), rowOf(i));
    }
    const IndexPage root(tree.file.pager.read(tree.file.root), tree.file.root);
    const PageNumber second = root.child(1);
    setPrevious(tree.file.pager.modify(second), root.child(2));
    const IndexPage leaf(tree.file.pager.read(second), second);
    EXPECT_EQ(codeOf([&] {
                  for (std::size_t i = 0; i < leaf.size(); ++i) {
                      Bytes key;
                      leaf.copyKey(i, key);
                      (void)tree.tree.erase(key, leaf.row(i));
                  }
              }),
              ErrorCode::Corrupt);
}

TEST(IndexTreeDamage, EachFaultOfAStructureIsReported)
{
    const auto faultsAfter = [](const std::function<void(ModelledTree&, const IndexPage&)>& damage) {
        ModelledTree tree;
        for (std::uint32_t i = 0; i < 3000; ++i) {
            tree.insert(numberKey(i), rowOf(i));
        }
        damage(tree, IndexPage(tree.file.pager.read(tree.file.root), tree.file.root));
        std::string text;
        for (const TreeFault& fault : tree.tree.check()) {
            text += fault.text + "\n";
        }
        return text;
    };
    const auto change = [](ModelledTree& tree, PageNumber page, const std::function<void(IndexPageContent&)>& edit) {
        IndexPageContent content(IndexPage(tree.file.pager.read(page), page));
        edit(content);
        content.encode(tree.file.pager.modify(page));
    };
    using testing::HasSubstr;
    EXPECT_EQ(faultsAfter([](auto&, const auto&) {}), "");
    EXPECT_THAT(
        faultsAfter([&](auto& tree, const auto& root) {
            change(tree, root.child(0), [](auto& leaf) { leaf.replace(3, makeLeafEntry(numberKey(9999), {1, 1})); });
        }),
        HasSubstr("does not follow the one before it"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) {
                    change(tree, root.child(1), [](auto& leaf) { leaf.erase(leaf.size() - 1); });
                }),
                HasSubstr("is not the last entry of page"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) { setNext(tree.file.pager.modify(root.child(0)), 0); }),
                HasSubstr("link to its next page is wrong"));
    EXPECT_THAT(
        faultsAfter([&](auto& tree, const auto& root) { setPrevious(tree.file.pager.modify(root.child(1)), 0); }),
        HasSubstr("link to its previous page is wrong"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) {
                    UsageMap(tree.file.pager, tree.file.map).remove(root.child(1));
                }),
                HasSubstr("is not in the index's usage map"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto&) {
                    UsageMap(tree.file.pager, tree.file.map).add(tree.file.pager.append());
                }),
                HasSubstr("in an index's usage map and not in its tree"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) {
                    putU16(MutableBytes(tree.file.pager.modify(root.child(1))), 2, 0xFFFF);
                }),
                HasSubstr("wrong free count"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) {
                    const PageNumber tail = root.header().tail;
                    change(tree, root.number(), [&](auto& node) {
                        node.insert(node.size(), makeNodeEntry(makeLeafEntry(numberKey(2999), rowOf(2999)), tail));
                        node.header.tail = 0;
                    });
                }),
                HasSubstr("has no tail"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) {
                    change(tree, root.number(), [&](auto& node) { node.header.tail = root.child(0); });
                }),
                HasSubstr("reaches the page twice"));
    EXPECT_THAT(faultsAfter([&](auto& tree, const auto& root) {
                    change(tree, root.child(0), [](auto& leaf) {
                        while (!leaf.isEmpty()) {
                            leaf.erase(0);
                        }
                    });
                }),
                HasSubstr("is empty and yet in the tree"));
}

TEST(IndexTreeDamage, RandomBytesInAnyPageNeverHangOrCrash)
{
    std::mt19937 random(77);
    ModelledTree tree;
    for (std::uint32_t i = 0; i < 300; ++i) {
        std::string text(400, 'x');
        text[random() % 20] = 'a';
        text[random() % 400] = 'b';
        tree.insert(textKey(text), rowOf(i));
    }
    for (std::uint32_t i = 0; i < 1000; ++i) {
        tree.insert(numberKey(i), rowOf(1000 + i));
    }
    tree.expectSound();
    const std::vector<PageNumber> pages = tree.pages();
    const Pager::Savepoint savepoint = tree.file.pager.savepoint();
    for (int round = 0; round < 250; ++round) {
        for (auto change = 1 + random() % 3; change-- > 0;) {
            const PageNumber number = pages[random() % pages.size()];
            Page& page = tree.file.pager.modify(number);
            if (random() % 2 == 0) {
                // Fields that lead elsewhere, with numbers of pages that are there.
                const std::size_t field = std::array<std::size_t, 4>{4, 12, 16, 20}[random() % 4];
                putU32(MutableBytes(page), field, pages[random() % pages.size()]);
            } else {
                const std::size_t area = random() % 2 == 0 ? 30 : kPageSize;
                page[random() % area] = static_cast<std::byte>(random());
            }
        }
        useTree(tree.tree);
        tree.file.pager.rollbackTo(savepoint);
    }
    tree.expectSound();
}

} // namespace jet
