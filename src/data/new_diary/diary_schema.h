// The diary's tables, relationships and saved queries, as they are put into a new file.
#pragma once

#include "jet/schema.h"

#include <string>
#include <vector>

namespace data {

/// A kind of reading as the code list has it.
struct ReadingType {
    int code = 0;
    const char16_t* text = u"";
};

/// Codes 1 to 8. Imported readings carry 0, which is in no list and reads "Unclassified".
[[nodiscard]] const std::vector<ReadingType>& readingTypes();

/// The five tables. The foods' table has one column of type double for each of the nutrients named.
[[nodiscard]] std::vector<jet::TableSpec> diaryTables(const std::vector<std::string>& nutrients);

/// None is enforced: code 0 has no row in the list of types, and a meal that is replaced goes before its foods do.
[[nodiscard]] std::vector<jet::Relationship> diaryRelationships();

[[nodiscard]] std::vector<jet::SavedQuery> diaryQueries();

} // namespace data
