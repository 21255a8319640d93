// What a run over records does with their values: nothing, or a checksum that tells whether two programs read the same.
#pragma once

#include <benchmark/benchmark.h>

#include <QString>

#include <bit>
#include <cstdint>
#include <string_view>

namespace bench {

/// For the runs that are timed.
class Untouched
{
public:
    void takeNull() {}
    void take(double number) { benchmark::DoNotOptimize(number); }
    void take(const QString& text) { benchmark::DoNotOptimize(text); }
    void take(std::string_view utf8) { benchmark::DoNotOptimize(utf8); }
    void endRow() {}
};

/// The order of rows and columns counts.
class Content
{
public:
    void takeNull() { mix(kNull); }
    void take(double number)
    {
        mix(kNumber);
        mix(std::bit_cast<std::uint64_t>(number));
    }
    void take(const QString& text) { take(std::string_view(text.toUtf8())); }
    void take(std::string_view utf8)
    {
        mix(kText);
        for (const char unit : utf8) {
            mix(static_cast<unsigned char>(unit));
        }
        mix(utf8.size());
    }
    void endRow()
    {
        mix(kEndOfRow);
        ++rows_;
    }

    [[nodiscard]] std::int64_t rows() const { return rows_; }
    bool operator==(const Content&) const = default;

private:
    enum Mark : std::uint64_t { kNull = 1, kNumber, kText, kEndOfRow };

    void mix(std::uint64_t value) { sum_ = (sum_ ^ value) * 0x100000001b3U; } // FNV's prime

    std::int64_t rows_ = 0;
    std::uint64_t sum_ = 0;
};

} // namespace bench
