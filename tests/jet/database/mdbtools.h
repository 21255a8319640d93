// The programs of mdbtools, as readers of files that we wrote.
#pragma once

#include "jet/database.h"

#include <filesystem>
#include <string>
#include <vector>

namespace jet::test {

/// A folder of its own for a test, gone with it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }

private:
    std::filesystem::path folder_;
};

/// What the program writes to its standard output. The test fails when the program does.
[[nodiscard]] std::string runMdbtool(const std::string& program, const std::vector<std::string>& arguments);

/// Fails the test for each value that mdb-export prints differently from what we read; what it is known to misread is
/// passed over. Gives the number of rows.
std::size_t expectSameRowsAsMdbExport(const std::string& file, const Table& table);

} // namespace jet::test
