// One index of a table as a B+tree of pages (FORMAT.md, "Index pages").
#pragma once

#include "jet/store/index_cursor.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace jet {

class IndexPageContent;

/// A fault that a walk through a tree found.
struct TreeFault {
    PageNumber page = 0;
    std::string text;
};

/// Reading functions require a read or a transaction in progress, changing ones a transaction. All throw Corrupt for a
/// page that contradicts itself or the tree; none can be kept from returning by a damaged file. Where a changing
/// function throws, some pages may have been changed: the caller returns to its savepoint or rolls back.
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
    [[nodiscard]] IndexCursor range(KeyInterval interval = {}, Direction direction = Direction::Forwards) const;

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

    /// More levels than a file of 2 GiB can fill, each node having two children or more.
    static constexpr std::size_t kMaximumDepth = 32;

    /// A node on the way from the root to a leaf, and which of its children the way takes (size() means the tail).
    struct Step {
        PageNumber node = 0;
        std::size_t child = 0;
    };
    using Path = std::vector<Step>;

    /// A child after a change, as its parent is told. `last` is the last leaf entry below it; none: it is what it was,
    /// and the child is the one that was there before.
    struct Child {
        PageNumber page = 0;
        std::optional<Bytes> last;
    };
    /// What takes the place of one child: none (it is gone), one, or two (it was split).
    using Children = std::vector<Child>;

    /// Where in the tree an entry was added.
    enum class Growth { Inside, AtTheEnd };

    /// Where an entry is or belongs.
    struct Spot {
        Path path;
        IndexPageRef leaf;
        std::size_t position = 0;
        bool occupied = false; ///< the entry is there
    };

    /// Pages to keep decoded: a walk that searches again and again, as a join does, comes by the same ones.
    static constexpr std::size_t kPagesKept = 256;

    [[nodiscard]] IndexPageRef read(PageNumber page) const;
    /// The leaf where the entry is or belongs.
    [[nodiscard]] IndexPageRef leafFor(ByteView key, RowPointer row, Path* path = nullptr) const;
    [[nodiscard]] Spot locate(ByteView key, RowPointer row) const;
    [[nodiscard]] IndexPageRef lastLeafUnder(PageNumber page) const;
    [[nodiscard]] Bytes lastEntryUnder(PageNumber page) const;

    void write(PageNumber page, const IndexPageContent& content);
    [[nodiscard]] PageNumber allocate();
    [[nodiscard]] Children store(PageNumber page, IndexPageContent content, std::optional<Bytes> last, Growth growth);
    [[nodiscard]] Children split(PageNumber page, IndexPageContent content, std::optional<Bytes> last, Growth growth);
    [[nodiscard]] Children splitOffLastEntry(PageNumber page, IndexPageContent content);
    [[nodiscard]] Children remove(PageNumber page, const IndexPageHeader& header);
    void updateNodes(Path path, Children children, Growth growth);
    [[nodiscard]] Children updateNode(const Step& step, const Children& children, bool overLeaves, Growth growth);
    void settleTail(IndexPageContent& node) const;
    void checkLinksBack(PageNumber page, const IndexPageHeader& header) const;
    void link(PageNumber left, PageNumber right);

    Pager* pager_;
    PageNumber owner_;
    PageNumber root_;
    RowPointer pages_;
    /// By page number; good while the pager still gives the page that was decoded.
    mutable std::unordered_map<PageNumber, IndexPageRef> decoded_;
};

} // namespace jet
