#include "jet/store/table_definition_store.h"

#include "jet/format/at_page.h"
#include "jet/format/table_definition_codec.h"
#include "jet/store/page_allocator.h"

#include <algorithm>
#include <unordered_set>

namespace jet {
namespace {

constexpr std::uint16_t kDefinitionMark = 0x0102;
constexpr std::size_t kFollowingCapacity = kPageSize - kDefinitionPageHeader;

// Offsets in the header of a page.
constexpr std::size_t kMark = 0;
constexpr std::size_t kUnused = 2;
constexpr std::size_t kNext = 4;

PageRef readDefinitionPage(Pager& pager, PageNumber number)
{
    PageRef page = pager.read(number);
    if (getU16(*page, kMark) != kDefinitionMark) {
        throw Error(ErrorCode::Corrupt, number, "A page that should hold a table's definition does not");
    }
    return page;
}

// Walks the chain of pages while the function wants more.
template <typename Function>
void walk(Pager& pager, PageNumber first, Function&& wantsMore)
{
    std::unordered_set<PageNumber> seen;
    for (PageNumber number = first; number != 0;) {
        if (!seen.insert(number).second) {
            throw Error(ErrorCode::Corrupt, number, "The pages of a table's definition lead in a circle");
        }
        const PageRef page = readDefinitionPage(pager, number);
        if (!wantsMore(number, *page)) {
            return;
        }
        number = getU32(*page, kNext);
    }
}

void write(Pager& pager, const std::vector<PageNumber>& chain, ByteView definition)
{
    definition = definition.subspan(kDefinitionPageHeader);
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const ByteView part = definition.first(std::min(definition.size(), kFollowingCapacity));
        definition = definition.subspan(part.size());
        const std::size_t unused = kFollowingCapacity - part.size();
        Page& page = pager.modify(chain[i]);
        page.fill(std::byte{0});
        putU16(page, kMark, kDefinitionMark);
        putU16(page, kUnused,
               static_cast<std::uint16_t>(unused > kDefinitionPageHeader ? unused - kDefinitionPageHeader : 0));
        putU32(page, kNext, i + 1 < chain.size() ? chain[i + 1] : 0);
        putBytes(page, kDefinitionPageHeader, part);
    }
}

std::size_t pagesFor(std::size_t size)
{
    return std::max<std::size_t>(1, (size - kDefinitionPageHeader + kFollowingCapacity - 1) / kFollowingCapacity);
}

} // namespace

TableDefinition TableDefinitionStore::load(PageNumber first) const
{
    Bytes bytes;
    std::size_t length = 0;
    walk(*pager_, first, [&](PageNumber number, const Page& page) {
        const ByteView content = page;
        if (number == first) {
            length = tableDefinitionLength(content);
            bytes.assign(content.begin(), content.end());
        } else {
            append(bytes, content.subspan(kDefinitionPageHeader));
        }
        return bytes.size() < length;
    });
    if (bytes.size() < length) {
        throw Error(ErrorCode::Corrupt, first, "A table's definition ends early");
    }
    return atPage(first, [&] { return decodeTableDefinition(bytes); });
}

std::vector<PageNumber> TableDefinitionStore::pages(PageNumber first) const
{
    std::vector<PageNumber> chain;
    walk(*pager_, first, [&](PageNumber number, const Page&) {
        chain.push_back(number);
        return true;
    });
    return chain;
}

PageNumber TableDefinitionStore::create(const TableDefinition& definition)
{
    const Bytes bytes = encodeTableDefinition(definition);
    PageAllocator allocator(*pager_);
    std::vector<PageNumber> chain;
    while (chain.size() < pagesFor(bytes.size())) {
        chain.push_back(allocator.allocate());
    }
    write(*pager_, chain, bytes);
    return chain.front();
}

void TableDefinitionStore::save(PageNumber first, const TableDefinition& definition)
{
    const Bytes bytes = encodeTableDefinition(definition);
    PageAllocator allocator(*pager_);
    std::vector<PageNumber> chain = pages(first);
    while (chain.size() < pagesFor(bytes.size())) {
        chain.push_back(allocator.allocate());
    }
    for (; chain.size() > pagesFor(bytes.size()); chain.pop_back()) {
        allocator.free(chain.back());
    }
    write(*pager_, chain, bytes);
}

void TableDefinitionStore::saveCounters(PageNumber first, const TableDefinition& definition)
{
    static_cast<void>(readDefinitionPage(*pager_, first));
    atPage(first, [&] { putTableCounters(pager_->modify(first), definition); });
}

} // namespace jet
