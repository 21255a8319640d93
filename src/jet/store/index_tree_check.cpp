#include "jet/store/index_tree.h"

#include "jet/store/usage_map.h"

#include <algorithm>
#include <set>
#include <utility>

namespace jet {

/// Walks a tree from its root and collects what is wrong. A page that cannot be read is one fault; what depends on it
/// is then not judged.
class IndexTreeChecker
{
public:
    using EntryVisitor = std::function<void(ByteView key, RowPointer row)>;

    IndexTreeChecker(const IndexTree& tree, const EntryVisitor& visitor) : tree_(&tree), visitor_(&visitor) {}

    std::vector<TreeFault> run()
    {
        visit(tree_->root_, 0, true);
        checkNeighbours(leaves_);
        checkNeighbours({{tree_->root_, rootHeader_}});
        checkUsageMap();
        return std::move(faults_);
    }

private:
    struct Sibling {
        PageNumber page = 0;
        IndexPageHeader header;
    };
    /// What a parent needs to know of a child.
    struct Subtree {
        std::optional<Sibling> node; ///< none: a leaf, or not readable
        std::optional<Bytes> last;   ///< the last leaf entry; none: not known
    };

    void report(PageNumber page, std::string text) { faults_.push_back({.page = page, .text = std::move(text)}); }

    Subtree visit(PageNumber number, std::size_t depth, bool atTheEnd)
    {
        if (!visited_.insert(number).second) {
            report(number, "An index reaches the page twice");
            incomplete_ = true;
            return {};
        }
        if (depth > IndexTree::kMaximumDepth) {
            report(number, "An index has too many levels");
            incomplete_ = true;
            return {};
        }
        try {
            const IndexPageRef read = tree_->read(number);
            const IndexPage& page = *read;
            if (depth == 0) {
                rootHeader_ = page.header();
            }
            return page.isLeaf() ? visitLeaf(page, depth) : visitNode(page, depth, atTheEnd);
        } catch (const Error& error) {
            report(number, error.what());
            incomplete_ = true;
            return {};
        }
    }

    Subtree visitLeaf(const IndexPage& leaf, std::size_t depth)
    {
        if (leafDepth_.value_or(depth) != depth) {
            report(leaf.number(), "A leaf of an index is not on the same level as the others");
        }
        leafDepth_ = depth;
        leaves_.push_back({leaf.number(), leaf.header()});
        if (leaf.size() == 0) {
            if (depth != 0) {
                report(leaf.number(), "A leaf of an index is empty and yet in the tree");
            }
            return {};
        }
        bool ordered = true;
        for (std::size_t entry = 0; entry < leaf.size(); ++entry) {
            if (ordered && any_ && leaf.compare(entry, key_, row_) <= 0) {
                ordered = false;
                report(leaf.number(),
                       "Entry " + std::to_string(entry) + " of a leaf does not follow the one before it");
            }
            any_ = true;
            leaf.copyKey(entry, key_);
            row_ = leaf.row(entry);
            if (*visitor_) {
                (*visitor_)(key_, row_);
            }
        }
        return {.node = {}, .last = makeLeafEntry(key_, row_)};
    }

    Subtree visitNode(const IndexPage& node, std::size_t depth, bool atTheEnd)
    {
        const PageNumber tail = node.header().tail;
        std::vector<Sibling> nodes;
        std::optional<Bytes> last;
        for (std::size_t entry = 0; entry < node.size(); ++entry) {
            const bool lastChild = tail == 0 && entry + 1 == node.size();
            const Subtree child = visit(node.child(entry), depth + 1, atTheEnd && lastChild);
            if (child.node) {
                nodes.push_back(*child.node);
            }
            // The engine of others may leave the entry of the very last node behind when it appends to its tail.
            const bool mayLag = atTheEnd && lastChild && child.node;
            Bytes named;
            node.appendEntry(entry, named);
            named.resize(named.size() - kIndexEntryChildSize);
            if (child.last && (mayLag ? named > *child.last : named != *child.last)) {
                report(node.number(), "Entry " + std::to_string(entry) + " of a node is not the last entry of page " +
                                          std::to_string(node.child(entry)));
            }
            last = child.last;
        }
        if (tail != 0) {
            const Subtree child = visit(tail, depth + 1, atTheEnd);
            if (child.node) {
                nodes.push_back(*child.node);
            }
            last = child.last;
        }
        checkNeighbours(nodes);
        if (!incomplete_ && nodes.empty() && tail == 0 && node.size() > 1) {
            report(node.number(), "A node over several leaves has no tail");
        }
        if (node.size() == 0) {
            report(node.number(), "A node has a tail and no other child");
        }
        return {.node = Sibling{node.number(), node.header()}, .last = std::move(last)};
    }

    /// Pages of one level, in order, must be linked with one another and with nothing else.
    void checkNeighbours(const std::vector<Sibling>& pages)
    {
        if (incomplete_) {
            return;
        }
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const PageNumber previous = i == 0 ? 0 : pages[i - 1].page;
            const PageNumber next = i + 1 == pages.size() ? 0 : pages[i + 1].page;
            if (pages[i].header.previous != previous) {
                report(pages[i].page, "An index page's link to its previous page is wrong");
            }
            if (pages[i].header.next != next) {
                report(pages[i].page, "An index page's link to its next page is wrong");
            }
        }
    }

    void checkUsageMap()
    {
        try {
            const std::vector<PageNumber> owned = UsageMap(*tree_->pager_, tree_->pages_).pages();
            const std::set<PageNumber> members(owned.begin(), owned.end());
            for (const PageNumber page : visited_) {
                if (!members.contains(page)) {
                    report(page, "A page of an index is not in the index's usage map");
                }
            }
            for (const PageNumber page : members) {
                if (!incomplete_ && !visited_.contains(page)) {
                    report(page, "A page is in an index's usage map and not in its tree");
                }
            }
        } catch (const Error& error) {
            report(tree_->pages_.page, error.what());
        }
    }

    const IndexTree* tree_;
    const EntryVisitor* visitor_;
    std::vector<TreeFault> faults_;
    std::set<PageNumber> visited_;
    std::vector<Sibling> leaves_;
    IndexPageHeader rootHeader_;
    std::optional<std::size_t> leafDepth_;
    bool incomplete_ = false; ///< part of the tree could not be walked
    bool any_ = false;        ///< an entry was seen: key_ and row_ are the last one's
    Bytes key_;
    RowPointer row_;
};

std::vector<TreeFault> IndexTree::check(const std::function<void(ByteView key, RowPointer row)>& entry) const
{
    return IndexTreeChecker(*this, entry).run();
}

} // namespace jet
