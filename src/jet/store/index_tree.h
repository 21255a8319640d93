// One index of a table as a B+tree of pages (FORMAT.md, "Index pages").
#pragma once

#include "jet/format/index_page.h"
#include "jet/store/usage_map.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace jet {

/// A run of keys in the index's order: from <= key < to. Made by IndexKeyEncoder; as default, all keys.
struct KeyInterval {
    Bytes from;
    std::optional<Bytes> to;
};

/// A fault that a walk through a tree found.
struct TreeFault {
    PageNumber page = 0;
    std::string text;
};

class IndexTree;

/// Walks the entries of an interval, forwards or backwards; starts before the first. Requires a read or a transaction
/// for as long as it is used. Changes of the same tree between two steps do no harm: the walk goes on behind the entry
/// that it gave last, be that still there or not.
class IndexCursor
{
public:
    IndexCursor(Pager& pager, const IndexTree& tree, KeyInterval interval, bool backwards);

    /// Moves to the next entry; false at the end, and from then on.
    [[nodiscard]] bool next();
    /// The entry at hand; requires that next() gave true.
    [[nodiscard]] const Bytes& key() const { return key_; }
    [[nodiscard]] RowPointer row() const { return row_; }

private:
    void seekStart();
    void seekPastCurrent();
    [[nodiscard]] bool stepForwards();
    [[nodiscard]] bool stepBackwards();
    void enter(PageNumber neighbour);

    Pager* pager_;
    const IndexTree* tree_;
    KeyInterval interval_;
    bool backwards_;
    bool ended_ = false;
    std::optional<IndexPage> leaf_; ///< none: before the first step
    std::size_t position_ = 0;      ///< the entry that a step forwards gives; a step backwards gives the one before it
    PageNumber leavesEntered_ = 0;  ///< since the last search; more than the file has pages: the chain is a ring
    Bytes key_;
    RowPointer row_;
};

/// Reading functions require a read or a transaction in progress, changing ones a transaction. All throw Corrupt for a
/// page that contradicts itself or the tree; none can be kept from returning by a damaged file.
class IndexTree
{
public:
    /// `owner` is the table's definition page, `pages` the usage map of the tree's pages.
    IndexTree(Pager& pager, PageNumber owner, PageNumber root, RowPointer pages);

    /// Allocates and writes the root of an empty tree and puts it into the map.
    [[nodiscard]] static PageNumber create(Pager& pager, PageNumber owner, RowPointer pages);

    /// The first row with exactly this key.
    [[nodiscard]] std::optional<RowPointer> find(ByteView key) const;
    /// Whether a row other than `except` has exactly this key: what a unique index asks before a row is written. Keys
    /// that are null in all columns never collide; do not ask for those.
    [[nodiscard]] bool isTaken(ByteView key, std::optional<RowPointer> except = std::nullopt) const;
    [[nodiscard]] IndexCursor range(KeyInterval interval = {}, bool backwards = false) const;

    /// Adds an entry. Checks no uniqueness. Throws ValueTooLong for a key past kMaximumKeyLength, Corrupt when the very
    /// entry is there already.
    void insert(ByteView key, RowPointer row);
    /// Removes an entry; false when it is not there.
    [[nodiscard]] bool erase(ByteView key, RowPointer row);

    /// Walks the whole tree, calls `entry` (where given) for each leaf entry in key order, and lists what is wrong:
    /// pages that cannot be read, order, node entries against their children, levels, tails, links both ways, pages
    /// against the usage map. Never throws Corrupt.
    [[nodiscard]] std::vector<TreeFault>
    check(const std::function<void(ByteView key, RowPointer row)>& entry = {}) const;

private:
    friend class IndexCursor;
    friend class IndexTreeChecker;

    /// A node on the way from the root to a leaf, and which of its children the way takes (size() means the tail).
    struct Step {
        PageNumber node = 0;
        std::size_t child = 0;
    };
    /// A child as its parent is told about it after a change: no `last` means that its last entry is what it was.
    struct Child {
        PageNumber page = 0;
        std::optional<Bytes> last;
    };

    [[nodiscard]] IndexPage read(PageNumber page) const;
    [[nodiscard]] IndexPage leafFor(ByteView key, RowPointer row, std::vector<Step>* path = nullptr) const;
    [[nodiscard]] IndexPage lastLeaf() const;

    Pager* pager_;
    PageNumber owner_;
    PageNumber root_;
    RowPointer pages_;
};

} // namespace jet
