#include "jet/store/index_tree.h"

#include "jet/format/index_page_content.h"
#include "jet/store/page_allocator.h"
#include "jet/store/usage_map.h"

#include <utility>

namespace jet {

namespace {

[[noreturn]] void refuse(PageNumber page, const std::string& what)
{
    throw Error(ErrorCode::Corrupt, page, "An index is damaged: " + what);
}

/// A root without entries.
IndexPageContent emptyTree(PageNumber owner)
{
    return IndexPageContent(IndexPageHeader{.kind = IndexPageKind::Leaf, .owner = owner});
}

} // namespace

IndexTree::IndexTree(Pager& pager, PageNumber owner, PageNumber root, RowPointer pages)
    : pager_(&pager), owner_(owner), root_(root), pages_(pages)
{
}

PageNumber IndexTree::create(Pager& pager, PageNumber owner, RowPointer pages)
{
    const PageNumber root = PageAllocator(pager).allocate();
    UsageMap(pager, pages).add(root);
    emptyTree(owner).encode(pager.modify(root));
    return root;
}

// --- Looking up ------------------------------------------------------------------------------------------------------

std::optional<RowPointer> IndexTree::find(ByteView key) const
{
    IndexCursor cursor = range(exactly(key));
    return cursor.next() ? std::optional(cursor.row()) : std::nullopt;
}

bool IndexTree::isTaken(ByteView key, std::optional<RowPointer> except) const
{
    IndexCursor cursor = range(exactly(key));
    while (cursor.next()) {
        if (cursor.row() != except) {
            return true;
        }
    }
    return false;
}

IndexCursor IndexTree::range(KeyInterval interval, Direction direction) const
{
    return IndexCursor(*pager_, *this, std::move(interval), direction);
}

IndexPageRef IndexTree::read(PageNumber number) const
{
    PageRef page = pager_->read(number);
    if (const auto found = decoded_.find(number); found != decoded_.end() && found->second->page() == page) {
        return found->second;
    }
    auto decoded = std::make_shared<const IndexPage>(std::move(page), number);
    if (decoded->header().owner != owner_) {
        refuse(number, "a page belongs to another table");
    }
    if (decoded_.size() == kPagesKept && !decoded_.contains(number)) {
        decoded_.clear();
    }
    decoded_.insert_or_assign(number, decoded);
    return decoded;
}

IndexPageRef IndexTree::leafFor(ByteView key, RowPointer row, Path* path) const
{
    IndexPageRef page = read(root_);
    for (std::size_t depth = 0; !page->isLeaf(); ++depth) {
        if (depth == kMaximumDepth) {
            refuse(page->number(), "its nodes form a ring");
        }
        std::size_t child = page->lowerBound(key, row);
        if (child == page->size() && page->header().tail == 0) {
            --child; // what comes behind everything goes to the last child
        }
        if (path != nullptr) {
            path->push_back({.node = page->number(), .child = child});
        }
        page = read(child < page->size() ? page->child(child) : page->header().tail);
    }
    return page;
}

IndexPageRef IndexTree::lastLeafUnder(PageNumber number) const
{
    IndexPageRef page = read(number);
    for (std::size_t depth = 0; !page->isLeaf(); ++depth) {
        if (depth == kMaximumDepth) {
            refuse(page->number(), "its nodes form a ring");
        }
        const PageNumber tail = page->header().tail;
        page = read(tail != 0 ? tail : page->child(page->size() - 1));
    }
    return page;
}

Bytes IndexTree::lastEntryUnder(PageNumber page) const
{
    const IndexPageRef leaf = lastLeafUnder(page);
    if (leaf->size() == 0) {
        refuse(leaf->number(), "a leaf among others is empty");
    }
    Bytes entry;
    leaf->appendEntry(leaf->size() - 1, entry);
    return entry;
}

// --- Changing --------------------------------------------------------------------------------------------------------
//
// A change begins at a leaf and goes up as long as it concerns the parent: every page that is written tells what takes
// its place among its parent's children.

void IndexTree::insert(ByteView key, RowPointer row)
{
    if (key.size() > kMaximumKeyLength) {
        throw Error(ErrorCode::ValueTooLong, "A key is too long for an index");
    }
    const Spot spot = locate(key, row);
    const IndexPage& leaf = *spot.leaf;
    if (spot.occupied) {
        refuse(leaf.number(), "it holds an entry already that is to be added");
    }
    const Bytes entry = makeLeafEntry(key, row);
    const bool last = spot.position == leaf.size();
    const Growth growth = last && leaf.header().next == 0 ? Growth::AtTheEnd : Growth::Inside;
    std::optional<Bytes> newLast = last ? std::optional(entry) : std::nullopt;
    Children children;
    if (leaf.hasRoomInPlace(spot.position, entry)) {
        leaf.insertInPlace(pager_->modify(leaf.number()), spot.position, entry);
        children = {{.page = leaf.number(), .last = std::move(newLast)}};
    } else {
        IndexPageContent content(leaf);
        content.insert(spot.position, entry);
        children = store(leaf.number(), std::move(content), std::move(newLast), growth);
    }
    updateNodes(spot.path, std::move(children), growth);
}

bool IndexTree::erase(ByteView key, RowPointer row)
{
    const Spot spot = locate(key, row);
    const IndexPage& leaf = *spot.leaf;
    if (!spot.occupied) {
        return false;
    }
    std::optional<Bytes> newLast;
    if (spot.position > 0 && spot.position + 1 == leaf.size()) {
        leaf.appendEntry(spot.position - 1, newLast.emplace());
    }
    Children children;
    if (leaf.size() == 1) {
        children = remove(leaf.number(), leaf.header());
    } else if (leaf.canEraseInPlace(spot.position)) {
        leaf.eraseInPlace(pager_->modify(leaf.number()), spot.position);
        children = {{.page = leaf.number(), .last = std::move(newLast)}};
    } else {
        IndexPageContent content(leaf);
        content.erase(spot.position);
        children = store(leaf.number(), std::move(content), std::move(newLast), Growth::Inside);
    }
    updateNodes(spot.path, std::move(children), Growth::Inside);
    return true;
}

IndexTree::Spot IndexTree::locate(ByteView key, RowPointer row) const
{
    Path path;
    IndexPageRef leaf = leafFor(key, row, &path);
    const std::size_t position = leaf->lowerBound(key, row);
    const bool occupied = position < leaf->size() && leaf->compare(position, key, row) == 0;
    return {.path = std::move(path), .leaf = std::move(leaf), .position = position, .occupied = occupied};
}

void IndexTree::updateNodes(Path path, Children children, Growth growth)
{
    for (bool overLeaves = true; !path.empty(); overLeaves = false) {
        if (children.size() == 1 && !children.front().last) {
            return;
        }
        children = updateNode(path.back(), children, overLeaves, growth);
        path.pop_back();
    }
}

IndexTree::Children IndexTree::updateNode(const Step& step, const Children& children, bool overLeaves, Growth growth)
{
    IndexPageContent node(*read(step.node));
    const bool isTail = step.child == node.size();
    const bool isLast = isTail || (node.header.tail == 0 && step.child + 1 == node.size());
    if (isTail && children.size() == 1) {
        return {{.page = step.node, .last = children.front().last}}; // no entry names a tail
    }
    Bytes oldEntry;
    if (isTail) {
        node.header.tail = 0;
    } else {
        const ByteView entry = node.entry(step.child);
        oldEntry.assign(entry.begin(), entry.end());
        node.erase(step.child);
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        const Child& child = children[i];
        if (isTail && i + 1 == children.size()) {
            node.header.tail = child.page;
        } else {
            node.insert(step.child + i, child.last ? makeNodeEntry(*child.last, child.page) : oldEntry);
        }
    }
    if (overLeaves) {
        settleTail(node);
    }
    if (node.isEmpty()) {
        return remove(step.node, node.header);
    }
    std::optional<Bytes> last;
    if (isLast && !children.empty()) {
        last = children.back().last;
    } else if (isLast) {
        last = lastEntryUnder(node.header.tail != 0 ? node.header.tail : childOf(node.entry(node.size() - 1)));
    }
    return store(step.node, std::move(node), std::move(last), growth);
}

/// A node over several leaves names the last one as its tail, a node over a single one by an entry.
void IndexTree::settleTail(IndexPageContent& node) const
{
    if (node.header.tail == 0 && node.size() > 1) {
        node.header.tail = childOf(node.entry(node.size() - 1));
        node.erase(node.size() - 1);
    } else if (node.header.tail != 0 && node.isEmpty()) {
        node.insert(0, makeNodeEntry(lastEntryUnder(node.header.tail), node.header.tail));
        node.header.tail = 0;
    }
}

IndexTree::Children IndexTree::store(PageNumber page, IndexPageContent content, std::optional<Bytes> last,
                                     Growth growth)
{
    if (content.fits()) {
        write(page, content);
        return {{.page = page, .last = std::move(last)}};
    }
    if (page != root_) {
        return split(page, std::move(content), std::move(last), growth);
    }
    // The root keeps its number: what it held moves down to a page of its own, and that one is split.
    const bool overLeaves = content.header.kind == IndexPageKind::Leaf;
    IndexPageContent root(IndexPageHeader{.kind = IndexPageKind::Node, .owner = owner_});
    for (const Child& child : split(allocate(), std::move(content), std::move(last), growth)) {
        root.insert(root.size(), makeNodeEntry(child.last ? *child.last : lastEntryUnder(child.page), child.page));
    }
    if (overLeaves) {
        settleTail(root);
    }
    write(root_, root);
    return {};
}

/// The first part of the entries moves to a new page before the old one, which keeps its number: so its place in the
/// parent stays right, be it an entry or the tail.
IndexTree::Children IndexTree::split(PageNumber page, IndexPageContent content, std::optional<Bytes> last,
                                     Growth growth)
{
    const bool isLeaf = content.header.kind == IndexPageKind::Leaf;
    if (isLeaf && growth == Growth::AtTheEnd) {
        return splitOffLastEntry(page, std::move(content));
    }
    const bool overLeaves = !isLeaf && read(childOf(content.entry(0)))->isLeaf();
    checkLinksBack(page, content.header);
    const PageNumber added = allocate();
    const PageNumber before = content.header.previous;
    IndexPageContent first =
        content.takeFirst(growth == Growth::AtTheEnd ? content.leadingThatFit() : content.middle());
    first.header.tail = 0;

    const ByteView lastOfFirst = first.entry(first.size() - 1);
    const ByteView leafEntry = isLeaf ? lastOfFirst : leafEntryOf(lastOfFirst);
    Children children{{.page = added, .last = Bytes(leafEntry.begin(), leafEntry.end())},
                      {.page = page, .last = std::move(last)}};
    if (!isLeaf && !overLeaves) {
        // Nodes are linked with nodes of the same parent alone.
        const IndexPageRef endOfFirst = read(childOf(lastOfFirst));
        const IndexPageRef startOfSecond = read(childOf(content.entry(0)));
        setNext(pager_->modify(endOfFirst->number()), 0);
        setPrevious(pager_->modify(startOfSecond->number()), 0);
    }
    if (overLeaves) {
        settleTail(first);
        settleTail(content);
    }
    write(added, first);
    write(page, content);
    link(before, added);
    link(added, page);
    return children;
}

/// For keys that rise: the full leaf stays as it is, and a new one behind it starts with the new entry.
IndexTree::Children IndexTree::splitOffLastEntry(PageNumber page, IndexPageContent content)
{
    const PageNumber added = allocate();
    const IndexPageContent full = content.takeFirst(content.size() - 1);
    const ByteView lastOfFull = full.entry(full.size() - 1);
    const ByteView lastOfAll = content.entry(0);
    Children children{{.page = page, .last = Bytes(lastOfFull.begin(), lastOfFull.end())},
                      {.page = added, .last = Bytes(lastOfAll.begin(), lastOfAll.end())}};
    write(page, full);
    write(added, content);
    link(page, added);
    return children;
}

/// Takes a page without entries out of its level and gives it back; the root becomes an empty leaf instead.
IndexTree::Children IndexTree::remove(PageNumber page, const IndexPageHeader& header)
{
    if (page == root_) {
        write(root_, emptyTree(owner_));
        return {};
    }
    checkLinksBack(page, header);
    link(header.previous, header.next);
    UsageMap(*pager_, pages_).remove(page);
    PageAllocator(*pager_).free(page);
    return {};
}

void IndexTree::write(PageNumber page, const IndexPageContent& content)
{
    content.encode(pager_->modify(page));
}

PageNumber IndexTree::allocate()
{
    const PageNumber page = PageAllocator(*pager_).allocate();
    UsageMap(*pager_, pages_).add(page);
    return page;
}

/// A link that leads elsewhere must not let a change spoil a page that is not concerned.
void IndexTree::checkLinksBack(PageNumber page, const IndexPageHeader& header) const
{
    const bool previousLinksBack = header.previous == 0 || read(header.previous)->header().next == page;
    const bool nextLinksBack = header.next == 0 || read(header.next)->header().previous == page;
    if (!previousLinksBack || !nextLinksBack) {
        refuse(page, "a neighbour does not link back to it");
    }
}

/// Makes two pages neighbours; 0 stands for the end of their level.
void IndexTree::link(PageNumber left, PageNumber right)
{
    if (left != 0) {
        setNext(pager_->modify(left), right);
    }
    if (right != 0) {
        setPrevious(pager_->modify(right), left);
    }
}

} // namespace jet
