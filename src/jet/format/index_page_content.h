// The entries of an index page for changing (FORMAT.md, "Index pages").
#pragma once

#include "jet/format/index_page.h"

#include <cstdint>
#include <vector>

namespace jet {

/// A page's content for changing: whole entries without a common prefix, back to back. It may hold more than fits a
/// page.
class IndexPageContent
{
public:
    explicit IndexPageContent(const IndexPageHeader& pageHeader) : header(pageHeader) {}
    explicit IndexPageContent(const IndexPage& page);

    IndexPageHeader header;

    [[nodiscard]] std::size_t size() const { return ends_.size(); }
    [[nodiscard]] bool isEmpty() const { return ends_.empty(); }
    [[nodiscard]] ByteView entry(std::size_t position) const;
    void insert(std::size_t position, ByteView entry);
    void replace(std::size_t position, ByteView entry);
    void erase(std::size_t position);
    /// Moves the first `count` entries to a content with the same header.
    [[nodiscard]] IndexPageContent takeFirst(std::size_t count);

    /// Whether the entries fit a page, with a common prefix where they need one.
    [[nodiscard]] bool fits() const;
    /// For content that does not fit: how many leading entries to split off so that both parts fit and are about as
    /// long.
    [[nodiscard]] std::size_t middle() const;
    /// For the same content: how many leading entries fit a page, so that as few as can be are split off behind them.
    [[nodiscard]] std::size_t leadingThatFit() const;
    /// Writes everything the page says; what other programs keep in its unknown bytes stays. Requires fits().
    void encode(Page& page) const;

private:
    [[nodiscard]] std::size_t start(std::size_t position) const { return position == 0 ? 0 : ends_[position - 1]; }
    /// The longest start that all entries of the run share and that leaves something of each.
    [[nodiscard]] std::size_t commonPrefix(std::size_t first, std::size_t count) const;
    /// Bytes that the run of entries takes with its common prefix stored once.
    [[nodiscard]] std::size_t compactSize(std::size_t first, std::size_t count) const;

    Bytes bytes_;
    std::vector<std::uint32_t> ends_; ///< where in bytes_ each entry ends
};

} // namespace jet
