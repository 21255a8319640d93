// A walk through one index of a table, in the order of its keys (FORMAT.md, "Index pages").
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/direction.h"
#include "jet/format/index_page.h"

#include <memory>
#include <optional>

namespace jet {

/// A run of keys in the index's order: from <= key < to. Made by IndexKeyEncoder; as default, all keys.
struct KeyInterval {
    Bytes from;
    std::optional<Bytes> to;
};

/// The keys that are equal to this one, byte for byte.
[[nodiscard]] KeyInterval exactly(ByteView key);

/// A page of a tree, decoded.
using IndexPageRef = std::shared_ptr<const IndexPage>;

class IndexTree;

/// Walks the entries of an interval, forwards or backwards; starts before the first. Requires a read or a transaction
/// for as long as it is used. Changes of the same tree between two steps do no harm: the walk goes on behind the entry
/// that it gave last, be that still there or not.
class IndexCursor
{
public:
    IndexCursor(Pager& pager, const IndexTree& tree, KeyInterval interval, Direction direction);

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
    /// Makes the leaf the one at hand.
    void enter(IndexPageRef leaf);
    void enterNeighbour(PageNumber neighbour);
    void give(std::size_t entry);

    Pager* pager_;
    const IndexTree* tree_;
    KeyInterval interval_;
    bool backwards_;
    bool ended_ = false;
    IndexPageRef leaf_;            ///< null: before the first step
    std::size_t position_ = 0;     ///< in the leaf: forwards the entry to give next, backwards the one behind it
    std::size_t limit_ = 0;        ///< in the leaf: where the interval ends forwards, begins backwards
    PageNumber leavesEntered_ = 0; ///< from neighbour to neighbour; more than the file has pages: the chain is a ring
    Bytes key_;
    RowPointer row_;
};

} // namespace jet
