#include "comparison.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace bench {

namespace {

constexpr int kWhatWidth = 58;
constexpr int kFigureWidth = 10;

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double processorSeconds()
{
    double seconds = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        seconds += secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    }
    return seconds;
}

double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// To three digits.
std::string shown(double figure, const char* unit)
{
    const int places = figure < 10 ? 2 : figure < 100 ? 1 : 0;
    std::ostringstream text;
    text << std::fixed << std::setprecision(places) << figure << ' ' << unit;
    return text.str();
}

std::string shown(double figure, Unit unit)
{
    if (unit == Unit::Bytes) {
        return shown(figure, "B");
    }
    return figure < 1e-3 ? shown(figure * 1e6, "us") : figure < 1 ? shown(figure * 1e3, "ms") : shown(figure, "s");
}

std::string shownRatio(double ratio)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << ratio;
    return text.str();
}

void printRow(const std::string& what, const std::vector<std::string>& figures)
{
    std::cout << std::left << std::setw(kWhatWidth) << what << std::right;
    for (const std::string& figure : figures) {
        std::cout << std::setw(kFigureWidth) << figure;
    }
    std::cout << std::endl; // a row takes seconds: whoever waits sees those that are done
}

} // namespace

double wallTimeOf(const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double processorTimeOf(const Work& work)
{
    const double start = processorSeconds();
    work();
    return processorSeconds() - start;
}

ComparisonTable::ComparisonTable()
{
    printRow("what", {"ours", "theirs", "ratio", "target", "met"});
}

void ComparisonTable::add(const Comparison& comparison)
{
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round <= comparison.rounds; ++round) {
        // Neither always runs in the wake of the other.
        if (round % 2 == 0) {
            ours.push_back(comparison.ours());
            theirs.push_back(comparison.theirs());
        } else {
            theirs.push_back(comparison.theirs());
            ours.push_back(comparison.ours());
        }
        if (round == 0) {
            ours.clear();
            theirs.clear();
        }
    }
    const double ourMedian = medianOf(ours);
    const double theirMedian = medianOf(theirs);
    const double ratio = ourMedian / theirMedian;
    const std::optional<double>& target = comparison.mostRatio;
    printRow(comparison.what,
             {shown(ourMedian, comparison.unit), shown(theirMedian, comparison.unit), shownRatio(ratio),
              target ? shownRatio(*target) : "-", target ? (ratio <= *target ? "yes" : "NO") : "-"});
    if (!comparison.note.empty()) {
        notes_.push_back({comparison.what, comparison.note});
    }
}

void ComparisonTable::printNotes() const
{
    std::cout << "\nMedians of rounds in which both sides took turns; ratio: ours to theirs.\n";
    for (const Note& note : notes_) {
        std::cout << "- " << note.what << ": " << note.text << '\n';
    }
}

} // namespace bench
