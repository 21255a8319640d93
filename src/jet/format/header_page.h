// Page 0: what the file is and where everything begins (FORMAT.md, "The file and its header page").
#pragma once

#include "jet/disk/page.h"
#include "jet/format/row_pointer.h"
#include "jet/format/table_definition.h"
#include "jet/format/value.h"

#include <array>
#include <cstdint>
#include <string>

namespace jet {

struct HeaderPage {
    RowPointer globalMap{.page = 1, .row = 0}; ///< the set of free pages
    RowPointer secondMap{.page = 1, .row = 1}; ///< always empty
    /// Definition pages of MSysObjects, MSysACEs, MSysQueries and MSysRelationships.
    std::array<PageNumber, 4> systemTables{2, 3, 4, 5};
    std::uint16_t codePage = 1252;
    std::uint32_t encodingKey = 0; ///< not 0: every other page is encoded
    std::u16string password;       ///< at most 20 characters; empty for none
    std::uint32_t engineBuild = 8618;
    SortOrder sortOrder; ///< of new text columns
    DateTime created;
};

/// Throws NotADatabase, UnsupportedVersion or Encoded for a first page that this engine cannot go on from; the message
/// is a sentence for the person who chose the file. Takes as much of the page as there is.
void checkHeader(ByteView page);

/// Calls checkHeader first. Throws Corrupt for fields that contradict the format.
[[nodiscard]] HeaderPage decodeHeaderPage(ByteView page);

/// The whole page 0 of a new file.
[[nodiscard]] Page encodeHeaderPage(const HeaderPage& header);

/// Only the pointer to the global map, for use on every allocation. The page must have passed checkHeader.
[[nodiscard]] RowPointer globalMapOf(ByteView page);

} // namespace jet
