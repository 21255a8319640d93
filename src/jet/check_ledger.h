// What the parts of the check share: the list of faults, and the book of who uses which page and row.
#pragma once

#include "jet/database.h"
#include "jet/disk/pager.h"
#include "jet/format/row_pointer.h"

#include <bitset>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace jet {

/// Thrown when there are kMaximumFaults faults; ends the check.
struct EnoughFaults {
};

/// "row 3 of page 12".
[[nodiscard]] std::string wordsFor(RowPointer row);

class FaultList
{
public:
    void add(PageNumber page, std::string text, Fault::Kind kind = Fault::Kind::Damage);
    [[nodiscard]] std::size_t size() const { return faults_.size(); }
    [[nodiscard]] std::vector<Fault> take() { return std::move(faults_); }

    /// Runs the function; what it finds damaged becomes a fault that begins with `what`. False when that happened.
    bool guard(PageNumber page, const std::string& what, const std::function<void()>& function);

private:
    std::vector<Fault> faults_;
};

/// A set of rows, some bits for each page that holds any.
class RowSet
{
public:
    /// False when it is in the set already.
    bool insert(RowPointer row);
    [[nodiscard]] bool contains(RowPointer row) const;
    [[nodiscard]] std::size_t size() const { return size_; }

private:
    std::unordered_map<PageNumber, std::bitset<256>> pages_;
    std::size_t size_ = 0;
};

/// The use of every page: each has one, or is free.
class PageLedger
{
public:
    enum class Use : std::uint8_t { None, Header, Map, Bitmap, Definition, Data, LongValues, Index };

    PageLedger(PageNumber pageCount, FaultList& faults);

    [[nodiscard]] PageNumber pageCount() const { return static_cast<PageNumber>(entries_.size()); }
    /// Names an owner for claims, such as `table "Meals"`.
    [[nodiscard]] std::uint32_t addOwner(std::string name);
    /// Enters the use of a page. False, and a fault, when the page is past the end or has a use already.
    bool claim(PageNumber page, Use use, std::uint32_t owner);
    /// Enters a usage map's row; its page is a map page then. False, and a fault, when another map is there already.
    bool claimMap(RowPointer row, std::uint32_t owner);

    [[nodiscard]] Use use(PageNumber page) const { return entries_.at(page).use; }
    [[nodiscard]] bool has(PageNumber page, Use use, std::uint32_t owner) const;
    [[nodiscard]] const RowSet& mapRows() const { return mapRows_; }

private:
    struct Entry {
        Use use = Use::None;
        std::uint32_t owner = 0;
    };

    std::vector<Entry> entries_;
    std::vector<std::string> owners_;
    RowSet mapRows_;
    FaultList* faults_;
};

} // namespace jet
