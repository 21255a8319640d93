#include "power_loss/trial.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

namespace power_loss {

namespace {

// More is not worth the time.
constexpr std::size_t kMostLosses = 5;

std::size_t digestOf(jet::ByteView bytes)
{
    std::string_view text;
    if (!bytes.empty()) {
        const void* const start = bytes.data();
        text = {static_cast<const char*>(start), bytes.size()};
    }
    return std::hash<std::string_view>{}(text);
}

std::size_t digestOf(const Files& files)
{
    std::string digests;
    for (const auto& [path, content] : files) {
        digests += path + ' ' + std::to_string(digestOf(content)) + '\n';
    }
    return std::hash<std::string_view>{}(digests);
}

bool changesTheDisk(const Event& event)
{
    return !std::holds_alternative<jet::test::Released>(event);
}

} // namespace

Trial::Trial(std::string diaryPath, Change nextChange, Effort effort)
    : path_(std::move(diaryPath)), nextChange_(std::move(nextChange)), effort_(effort)
{
}

Findings Trial::run(const RecordingFileSystem& disk, std::size_t from, const std::vector<jet::Bytes>& possible)
{
    findings_ = {};
    findings_.history = foundAfterEachRelease(disk, from);
    Digests allowed;
    for (const jet::Bytes& diary : possible) {
        allowed.insert(digestOf(diary));
    }
    walk(disk, from, std::move(allowed), effort_.depth);
    std::vector<jet::Bytes>& history = findings_.history;
    history.erase(std::unique(history.begin(), history.end()), history.end());
    return std::exchange(findings_, {});
}

Trial::Found Trial::open(RecordingFileSystem& disk) const
{
    static_cast<void>(jet::Database::open(disk, path_));
    Found found{.files = disk.files(), .diary = {}};
    found.diary = found.files.at(path_);
    return found;
}

std::vector<jet::Bytes> Trial::foundAfterEachRelease(const RecordingFileSystem& disk, std::size_t from)
{
    std::vector<jet::Bytes> diaries;
    DiskState state(disk.start());
    for (std::size_t i = 0; i <= disk.events().size(); ++i) {
        if (i == from || (i > from && std::holds_alternative<jet::test::Released>(disk.events()[i - 1]))) {
            RecordingFileSystem there(state.seen());
            diaries.push_back(open(there).diary);
        }
        if (i < disk.events().size()) {
            state.apply(disk.events()[i]);
        }
    }
    return diaries;
}

void Trial::walk(const RecordingFileSystem& disk, std::size_t from, Digests allowed, std::size_t depth)
{
    const std::vector<jet::Bytes> diaries = foundAfterEachRelease(disk, from);
    std::size_t release = 0;
    if (allowed.empty()) {
        allowed = {digestOf(diaries.front())};
    }
    const auto allowNext = [&] {
        if (release + 1 < diaries.size()) {
            allowed.insert(digestOf(diaries[release + 1]));
        }
    };
    allowNext();

    Count& count = depth == effort_.depth ? findings_.program : findings_.recoveries;
    const std::vector<Event>& events = disk.events();
    DiskState state(disk.start());
    std::for_each(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(from),
                  [&](const Event& event) { state.apply(event); });
    for (std::size_t i = from; i <= events.size() && findings_.losses.size() < kMostLosses; ++i) {
        story_.push_back("after call " + std::to_string(i) + (i == 0 ? "" : ", " + describe(events[i - 1])));
        if (i == from || changesTheDisk(events[i - 1])) {
            ++count.calls;
            count.states += cutPower(state, allowed, depth);
        } else {
            // The disk is as before, but now somebody relies on it.
            ++release;
            allowed = {digestOf(diaries[release])};
            cutPower(state, allowed, 0);
            allowNext();
        }
        story_.pop_back();
        if (i < events.size()) {
            state.apply(events[i]);
        }
    }
}

std::size_t Trial::cutPower(const DiskState& disk, const Digests& allowed, std::size_t depth)
{
    ++calls_;
    std::vector<Survival> survivals{{}};
    if (!disk.isSettled()) {
        survivals = Survival::several(effort_.choices, effort_.seed * 1'000'003 + calls_);
    }
    Digests seen;
    const std::size_t first = static_cast<std::size_t>(calls_) % survivals.size();
    for (std::size_t i = 0; i < survivals.size(); ++i) {
        const Survival& survival = survivals[(first + i) % survivals.size()];
        const Files files = disk.afterPowerLoss(survival);
        if (seen.insert(digestOf(files)).second) {
            story_.push_back(survival.describe());
            examine(files, allowed, depth, seen.size() <= effort_.recoveries);
            story_.pop_back();
        }
    }
    return seen.size();
}

void Trial::examine(const Files& files, const Digests& allowed, std::size_t depth, bool cutRecovery)
{
    RecordingFileSystem disk(files);
    try {
        const Found found = open(disk);
        if (!allowed.contains(digestOf(found.diary))) {
            lose("the diary is neither as it was before the change nor as after it");
            return;
        }
        RecordingFileSystem again(found.files);
        if (open(again).files != found.files || !again.events().empty()) {
            lose("opened once more, it is changed again");
        }
        requireUsable(found);
    } catch (const jet::Error& error) {
        lose(std::string("it does not open: ") + error.what());
        return;
    }
    if (cutRecovery && depth > 0 && !disk.events().empty()) {
        walk(disk, 0, allowed, depth - 1);
    }
}

void Trial::requireUsable(const Found& found)
{
    const auto requireSound = [&](jet::Database& diary, const std::string& when) {
        for (const jet::Fault& fault : diary.check()) {
            lose(when + ", page " + std::to_string(fault.page) + ": " + fault.text);
        }
    };
    if (sound_.insert(digestOf(found.diary)).second) {
        RecordingFileSystem disk(found.files);
        requireSound(*jet::Database::open(disk, path_), "the structure is damaged");
    }
    if (usable_.insert(digestOf(found.files)).second) {
        RecordingFileSystem disk(found.files);
        const auto diary = jet::Database::open(disk, path_);
        nextChange_(*diary);
        requireSound(*diary, "the structure is damaged after the next change");
        if (disk.files().at(path_) == found.diary) {
            lose("the next change changed nothing");
        }
    }
}

void Trial::lose(const std::string& what)
{
    std::string loss;
    for (const std::string& chapter : story_) {
        loss += chapter + "; ";
    }
    findings_.losses.push_back(loss + what);
}

} // namespace power_loss
