// A small diary whose pages can be written without the engine's rules, and what the check must then say.
#pragma once

#include "jet/check.h"
#include "jet/disk/memory_file.h"
#include "jet/disk/pager.h"
#include "jet/format/index_key.h"
#include "jet/store/index_tree.h"
#include "jet/store/row_store.h"
#include "jet/store/usage_map.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace jet::test {

/// The small diary (small_diary.h). What looks into it or changes it stands between begin() and commit().
class BreakableDiary
{
public:
    BreakableDiary();

    [[nodiscard]] std::vector<Fault> check();

    void begin();
    void commit();
    [[nodiscard]] Pager& pager() { return *pager_; }

    // --- Where things are; rows are counted from 0 in the order of a scan ---

    [[nodiscard]] PageNumber page(const std::string& table) const { return pages_.at(table); }
    [[nodiscard]] TableDefinition definition(const std::string& table);
    [[nodiscard]] RealIndex index(const std::string& table, std::size_t position);
    [[nodiscard]] UsageMap map(RowPointer where) { return {*pager_, where}; }
    /// The first of the table's pages of rows.
    [[nodiscard]] PageNumber dataPage(const std::string& table);
    /// The first page of the readings' notes.
    [[nodiscard]] PageNumber longValuePage();
    [[nodiscard]] RowStore rows(const std::string& table);
    [[nodiscard]] IndexTree tree(const std::string& table, std::size_t position);
    [[nodiscard]] StoredRow row(const std::string& table, int number);
    [[nodiscard]] IndexKey key(const std::string& table, std::size_t position, int rowNumber);
    /// The slot of a reading's notes that lie outside its row.
    [[nodiscard]] Bytes memoSlot(int rowNumber);
    /// The row of MSysObjects of that name.
    [[nodiscard]] int catalogueRow(const std::u16string& name);

    // --- Changes ---

    [[nodiscard]] Page& modify(PageNumber number) { return pager_->modify(number); }
    void setDefinition(const std::string& table, const std::function<void(TableDefinition&)>& change);
    /// Changes one value of a row and nothing else; gives the row's address.
    RowPointer setValue(const std::string& table, int number, const char* column, const Value& value);
    RowPointer eraseRow(const std::string& table, int number);

private:
    MemoryFileSystem disk_;
    std::map<std::string, PageNumber> pages_;
    std::unique_ptr<Pager> pager_;
};

/// One thing broken.
struct Breakage {
    const char* name;
    /// Breaks it and gives the page that the check must name.
    std::function<PageNumber(BreakableDiary&)> breakOne;
    std::string text; ///< in what the check says
    Fault::Kind kind = Fault::Kind::Damage;
};

void PrintTo(const Breakage& broken, std::ostream* out);
[[nodiscard]] std::string nameOfBreakage(const testing::TestParamInfo<Breakage>& info);

/// Its test is in check_test.cpp; the files beside it instantiate it with what may be broken.
class BrokenFile : public testing::TestWithParam<Breakage>
{
};

} // namespace jet::test
