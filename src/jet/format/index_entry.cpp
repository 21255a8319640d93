#include "jet/format/index_entry.h"

namespace jet {

Bytes makeLeafEntry(ByteView key, RowPointer row)
{
    if (row.page > 0xFFFFFF) {
        throw Error(ErrorCode::InvalidArgument, "A row's page number does not fit an index entry");
    }
    Bytes entry(key.begin(), key.end());
    entry.resize(key.size() + kIndexEntryRowSize);
    putBigEndian<std::uint32_t>(MutableBytes(entry), key.size(), (row.page << 8U) | row.row);
    return entry;
}

Bytes makeNodeEntry(ByteView lastLeafEntry, PageNumber child)
{
    Bytes entry(lastLeafEntry.begin(), lastLeafEntry.end());
    entry.resize(lastLeafEntry.size() + kIndexEntryChildSize);
    putBigEndian<std::uint32_t>(MutableBytes(entry), lastLeafEntry.size(), child);
    return entry;
}

ByteView leafEntryOf(ByteView nodeEntry)
{
    return slice(nodeEntry, 0, nodeEntry.size() - kIndexEntryChildSize);
}

PageNumber childOf(ByteView nodeEntry)
{
    return getBigEndian<std::uint32_t>(nodeEntry, nodeEntry.size() - kIndexEntryChildSize);
}

} // namespace jet
