// Many random actions on one diary, which is compared with a plain model of it.
#pragma once

#include "soak/browse_actions.h"
#include "soak/report_actions.h"
#include "soak/scene.h"

#include <QTemporaryDir>

#include <cstdint>
#include <map>

namespace soak {

/// The same seed does the same.
class Soak
{
public:
    explicit Soak(std::uint64_t seed);
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    /// One action; the file's structure is checked after it. Throws Difference, which names seed, step and action.
    void step();
    /// The whole content, as the program and as an independent program read it. Throws Difference.
    void compare();

    [[nodiscard]] long steps() const { return steps_; }
    /// How often each was done; in words that name its kind.
    [[nodiscard]] const std::map<std::string, long>& done() const { return done_; }
    [[nodiscard]] bool isExported() const { return exported_; } ///< the independent program has read the diary
    [[nodiscard]] const QString& path() const { return scene_.path; }
    [[nodiscard]] Contents& expected() { return scene_.expected; } ///< for those who try whether a fault is found
    /// The highest number of readings and meals that the diary had at once.
    [[nodiscard]] std::size_t mostReadings() const { return mostReadings_; }
    [[nodiscard]] std::size_t mostMeals() const { return mostMeals_; }

private:
    void act();
    void checkFile();
    [[nodiscard]] Difference located(const std::string& what) const;

    std::uint64_t seed_;
    QTemporaryDir folder_;
    Scene scene_;
    ReportWindow reports_;
    ReadingBrowser browser_;
    long steps_ = 0;
    std::map<std::string, long> done_;
    bool exported_ = false;
    std::size_t mostReadings_ = 0;
    std::size_t mostMeals_ = 0;
};

} // namespace soak
