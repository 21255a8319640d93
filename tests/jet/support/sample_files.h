// The .mdb files of other programs that tests read where the folder is there; without it they instantiate no cases.
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace jet::test {

[[nodiscard]] inline std::vector<std::filesystem::path> sampleFiles()
{
    std::vector<std::filesystem::path> paths;
    const std::filesystem::path folder = QUILLON_JET_SAMPLES;
    if (std::filesystem::is_directory(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".mdb") {
                paths.push_back(entry.path());
            }
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// The name of a parametrised case: the file's, letters and digits alone.
[[nodiscard]] inline std::string sampleName(const testing::TestParamInfo<std::filesystem::path>& info)
{
    std::string name = info.param.stem().string();
    name.erase(std::remove_if(name.begin(), name.end(),
                              [](char letter) { return std::isalnum(static_cast<unsigned char>(letter)) == 0; }),
               name.end());
    return name;
}

} // namespace jet::test
