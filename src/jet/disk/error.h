// What can go wrong in the engine, as one exception type.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace jet {

/// A page of the file, counted from 0; its byte address is 4096 times this number.
using PageNumber = std::uint32_t;

enum class ErrorCode {
    Io,                 ///< the operating system refused a read, a write, a sync ...
    FileNotFound,       ///< there is no file at the path
    FileExists,         ///< a file that was to be created is there already
    ReadOnly,           ///< a change was asked of a file, a table or a column that cannot be changed
    Replaced,           ///< the file was moved, removed or replaced by another program while it was open
    Locked,             ///< another program holds a lock that does not go with ours
    DiskFull,           ///< no space is left for a write
    NotADatabase,       ///< the file is not an Access file
    UnsupportedVersion, ///< an Access file of another format version
    Encoded,            ///< the pages are encoded (a file with a password that encrypts it)
    Corrupt,            ///< the content contradicts itself; Error::page() tells where
    JournalDamaged,     ///< a rollback journal that cannot be trusted stands beside the file
    NoSuchObject,       ///< no table, query, column or index of that name
    ObjectExists,       ///< the name is taken
    InvalidArgument,    ///< a value or a definition that the format cannot hold
    ValueTooLong,       ///< a text, a binary value or a whole row is longer than its place
    NullNotAllowed,     ///< a key column that must have a value has none
    DuplicateKey,       ///< a unique index holds the key already
    MissingParent,      ///< an enforced relationship: the referenced row is not there
    HasChildren,        ///< an enforced relationship: rows refer to the row that would go or change its key
    IndexNotSupported,  ///< the table has an index that this engine cannot keep up, so it is not written to
    Overflow,           ///< a number does not fit its column's type, or a counter has reached its end
};

/// The engine's only exception. The message is one sentence for a person; code() is for the program.
class Error : public std::runtime_error
{
public:
    Error(ErrorCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    Error(ErrorCode code, PageNumber page, const std::string& message)
        : std::runtime_error(message + " (page " + std::to_string(page) + ")"), code_(code), page_(page)
    {
    }

    [[nodiscard]] ErrorCode code() const { return code_; }
    /// The page at fault, where one is known.
    [[nodiscard]] std::optional<PageNumber> page() const { return page_; }

private:
    ErrorCode code_;
    std::optional<PageNumber> page_;
};

} // namespace jet
