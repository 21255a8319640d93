// The properties of a table or query and of its columns (FORMAT.md, "Properties").
#pragma once

#include "jet/format/value.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

struct Property {
    std::string name;        ///< UTF-8
    bool structural = false; ///< part of the table's design, such as Required
    std::uint8_t type = 0;   ///< a ColumnType, mostly
    Bytes data;              ///< as stored; booleans one byte, texts UTF-16
};

/// The properties of the object itself (empty name) or of one of its columns.
struct PropertySet {
    std::string owner;      ///< UTF-8
    std::uint16_t kind = 0; ///< as stored: 0 the object, 1 a column; others are kept
    std::vector<Property> properties;

    [[nodiscard]] const Property* find(std::string_view name) const; ///< or null
    /// The property's value when there is one, and a Boolean.
    [[nodiscard]] std::optional<bool> boolean(std::string_view name) const;
};

struct PropertyBlob {
    std::vector<PropertySet> sets;
    std::vector<std::string> names; ///< all that the list defines, as stored

    [[nodiscard]] const PropertySet* find(std::string_view owner) const; ///< or null; "" is the object itself
};

/// Nothing at all decodes to no properties. Throws Corrupt.
[[nodiscard]] PropertyBlob decodePropertyBlob(ByteView bytes);

} // namespace jet
