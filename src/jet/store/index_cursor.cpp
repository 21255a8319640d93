#include "jet/store/index_cursor.h"

#include "jet/store/index_tree.h"

#include <utility>

namespace jet {

namespace {

/// The lowest row there is: before every entry of a key.
constexpr RowPointer kBeforeRows{};

} // namespace

KeyInterval exactly(ByteView key)
{
    Bytes from(key.begin(), key.end());
    Bytes to = from;
    to.push_back(std::byte{0}); // the lowest run of bytes above the key
    return {.from = std::move(from), .to = std::move(to)};
}

IndexCursor::IndexCursor(Pager& pager, const IndexTree& tree, KeyInterval interval, Direction direction)
    : pager_(&pager), tree_(&tree), interval_(std::move(interval)), backwards_(direction == Direction::Backwards)
{
}

bool IndexCursor::next()
{
    if (ended_) {
        return false;
    }
    if (leaf_ == nullptr) {
        seekStart();
    } else if (pager_->read(leaf_->number()) != leaf_->page()) {
        // A page that somebody holds never changes: one that was changed is another one when it is read again.
        seekPastCurrent();
    }
    ended_ = backwards_ ? !stepBackwards() : !stepForwards();
    if (ended_) {
        leaf_.reset();
    }
    return !ended_;
}

void IndexCursor::seekStart()
{
    if (!backwards_) {
        enter(tree_->leafFor(interval_.from, kBeforeRows));
        position_ = leaf_->lowerBound(interval_.from, kBeforeRows);
    } else if (interval_.to) {
        enter(tree_->leafFor(*interval_.to, kBeforeRows));
        position_ = leaf_->lowerBound(*interval_.to, kBeforeRows);
    } else {
        enter(tree_->lastLeafUnder(tree_->root_));
        position_ = leaf_->size();
    }
}

void IndexCursor::seekPastCurrent()
{
    enter(tree_->leafFor(key_, row_));
    position_ = leaf_->lowerBound(key_, row_);
    const bool stillThere = position_ < leaf_->size() && leaf_->compare(position_, key_, row_) == 0;
    if (!backwards_ && stillThere) {
        ++position_;
    }
    leavesEntered_ = 0;
}

bool IndexCursor::stepForwards()
{
    while (position_ == leaf_->size()) {
        if (leaf_->header().next == 0) {
            return false;
        }
        enterNeighbour(leaf_->header().next);
        position_ = 0;
    }
    if (position_ >= limit_) {
        return false;
    }
    give(position_++);
    return true;
}

bool IndexCursor::stepBackwards()
{
    while (position_ == 0) {
        if (leaf_->header().previous == 0) {
            return false;
        }
        enterNeighbour(leaf_->header().previous);
        position_ = leaf_->size();
    }
    if (position_ <= limit_) {
        return false;
    }
    give(--position_);
    return true;
}

void IndexCursor::enter(IndexPageRef leaf)
{
    leaf_ = std::move(leaf);
    if (backwards_) {
        limit_ = leaf_->lowerBound(interval_.from, kBeforeRows);
    } else {
        limit_ = interval_.to ? leaf_->lowerBound(*interval_.to, kBeforeRows) : leaf_->size();
    }
}

void IndexCursor::enterNeighbour(PageNumber neighbour)
{
    IndexPageRef leaf = tree_->read(neighbour);
    const PageNumber linkBack = backwards_ ? leaf->header().next : leaf->header().previous;
    if (!leaf->isLeaf() || linkBack != leaf_->number() || ++leavesEntered_ > pager_->pageCount()) {
        throw Error(ErrorCode::Corrupt, neighbour, "An index is damaged: the links between its leaves are broken");
    }
    enter(std::move(leaf));
}

void IndexCursor::give(std::size_t entry)
{
    leaf_->copyKey(entry, key_);
    row_ = leaf_->row(entry);
}

} // namespace jet
