#include "jet/format/text_key.h"

#include "jet/format/text_key_table.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace jet {

namespace {

using Kind = TextKeyRun::Kind;

/// The table, with a way to the run of a unit that is short for all units and direct for Latin ones.
class TextKeyTable
{
public:
    TextKeyTable() : runs_(textKeyRuns())
    {
        std::size_t run = 0;
        for (std::size_t block = 0; block < 256; ++block) {
            while (run + 1 < runs_.size() && runs_[run + 1].first <= block * 256) {
                ++run;
            }
            blocks_[block] = static_cast<std::uint16_t>(run);
        }
        blocks_[256] = static_cast<std::uint16_t>(runs_.size() - 1);
        for (std::size_t unit = 0; unit < kLatinUnits; ++unit) {
            latin_[unit] = find(static_cast<char16_t>(unit));
        }
        for (std::size_t unit = 0; unit < kAsciiUnits; ++unit) {
            if (latin_[unit].kind == Kind::Code) {
                const unsigned shift = 8U * (2U - latin_[unit].codeLength);
                ascii_[unit] = static_cast<std::uint16_t>(latin_[unit].code << shift);
            }
        }
    }

    /// What the unit adds, its code worked out.
    [[nodiscard]] TextKeyRun of(char16_t unit) const { return unit < kLatinUnits ? latin_[unit] : find(unit); }

    /// The code of an ASCII unit as a number by which to compare; 0 when it has none.
    [[nodiscard]] unsigned asciiCode(char16_t unit) const { return ascii_[unit]; }

    static constexpr std::size_t kAsciiUnits = 0x80;

private:
    static constexpr std::size_t kLatinUnits = 0x250;

    [[nodiscard]] TextKeyRun find(char16_t unit) const
    {
        const std::size_t block = unit / 256U;
        const auto begin = runs_.begin() + blocks_[block];
        const auto end = runs_.begin() + blocks_[block + 1] + 1;
        TextKeyRun run = *std::prev(std::upper_bound(
            begin, end, unit, [](char16_t wanted, const TextKeyRun& candidate) { return wanted < candidate.first; }));
        if (run.rising != 0) {
            run.code += static_cast<std::uint32_t>(unit - run.first);
        }
        return run;
    }

    std::span<const TextKeyRun> runs_;
    std::array<std::uint16_t, 257> blocks_{}; ///< the run that holds the first unit of each block of 256
    std::array<TextKeyRun, kLatinUnits> latin_{};
    std::array<std::uint16_t, kAsciiUnits> ascii_{};
};

const TextKeyTable& table()
{
    static const TextKeyTable instance;
    return instance;
}

/// Bytes on the stack, enough for what the units of one text can add.
template <std::size_t Capacity>
class ShortBytes
{
public:
    void append(std::uint32_t number, std::size_t length)
    {
        for (std::size_t i = length; i-- > 0;) {
            bytes_[size_++] = static_cast<std::byte>((number >> (8U * i)) & 0xFFU);
        }
    }
    void append(std::size_t count, std::byte byte)
    {
        std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(size_), count, byte);
        size_ += count;
    }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::byte& last() { return bytes_[size_ - 1]; }
    void dropLast() { --size_; }
    [[nodiscard]] ByteView view() const { return ByteView(bytes_).first(size_); }

private:
    std::array<std::byte, Capacity> bytes_; // not cleared: most texts use a few bytes of it
    std::size_t size_ = 0;
};

/// The part of a text that its key is made of.
std::u16string_view significantPart(std::u16string_view text)
{
    text = text.substr(0, kTextKeyUnits);
    while (!text.empty() && text.back() == u' ') {
        text.remove_suffix(1);
    }
    return text;
}

/// The four parts of a key, filled unit by unit.
class KeyParts
{
public:
    void add(char16_t unit)
    {
        const TextKeyRun run = table().of(unit);
        const std::size_t here = coded_;
        switch (run.kind) {
        case Kind::Nothing:
            break;
        case Kind::Code:
            codes_.append(run.code, run.codeLength);
            ++coded_;
            if (run.accentLength != 0) {
                fillAccents(here);
                accents_.append(run.accents, run.accentLength);
                ++accented_;
            }
            if (run.kana != 0) {
                kana_.append(run.kana, 1);
            }
            break;
        case Kind::Mark:
            fillAccents(here);
            if (accents_.empty()) {
                accents_.append(run.code, 1);
                markLeads_ = true;
            } else {
                accents_.last() = static_cast<std::byte>(std::to_integer<unsigned>(accents_.last()) + run.code);
            }
            break;
        case Kind::Tie: {
            const std::size_t place = anyAccent_ ? accents_.size() + here - accented_ - (markLeads_ ? 1U : 0U) : here;
            ties_.append(static_cast<std::uint32_t>(0x8000U | (7U + 4U * place)), 2);
            ties_.append(6, 1);
            ties_.append(run.code, 1);
            break;
        }
        }
    }

    /// Appends the ascending key without the byte that ends it.
    void finish(Bytes& key)
    {
        append(key, codes_.view());
        key.push_back(kSeparator);
        while (!accents_.empty() && accents_.last() <= kNoAccent) {
            accents_.dropLast();
        }
        append(key, accents_.view());
        if (kana_.empty() && ties_.empty()) {
            return;
        }
        key.insert(key.end(), {kSeparator, kSeparator});
        if (!kana_.empty()) {
            finishKana(key);
        }
        if (!ties_.empty()) {
            key.push_back(kSeparator);
            append(key, ties_.view());
        }
    }

private:
    static constexpr std::byte kSeparator{0x01};
    static constexpr std::byte kNoAccent{0x02};
    static constexpr std::byte kFullKana{3};

    void fillAccents(std::size_t upTo)
    {
        anyAccent_ = true;
        if (accented_ < upTo) {
            accents_.append(upTo - accented_, kNoAccent);
            accented_ = upTo;
        }
    }

    void finishKana(Bytes& key)
    {
        while (!kana_.empty() && kana_.last() == kFullKana) {
            kana_.dropLast();
        }
        const ByteView sizes = kana_.view();
        for (std::size_t i = 0; i < sizes.size(); i += 3) {
            std::byte group{0x80};
            for (std::size_t j = i; j < std::min(i + 3, sizes.size()); ++j) {
                group |= sizes[j] << (4 - 2 * static_cast<int>(j - i));
            }
            key.push_back(group);
        }
        key.insert(key.end(), {std::byte{0xFF}, std::byte{0x02}, std::byte{0x80}, std::byte{0xFF}, std::byte{0x80}});
        if (!ties_.empty()) {
            key.push_back(std::byte{0xFF});
        }
    }

    // A unit adds at most a code of 4 bytes; accents of 2 bytes besides one filler; one kana; a tie of 4 bytes.
    ShortBytes<kTextKeyUnits * 4> codes_;
    ShortBytes<kTextKeyUnits * 3> accents_;
    ShortBytes<kTextKeyUnits> kana_;
    ShortBytes<kTextKeyUnits * 4> ties_;
    std::size_t coded_ = 0;    ///< units that gave a code
    std::size_t accented_ = 0; ///< of these, units for which accents_ speaks
    bool anyAccent_ = false;
    bool markLeads_ = false; ///< a mark stood before any code
};

/// The key of the significant part of a text, without the byte that ends it.
void appendParts(std::u16string_view significant, Bytes& key)
{
    KeyParts parts;
    for (const char16_t unit : significant) {
        parts.add(unit);
    }
    parts.finish(key);
}

int compareByKeys(std::u16string_view a, std::u16string_view b)
{
    // Sorting calls this again and again: the buffers keep their memory.
    thread_local Bytes keyA;
    thread_local Bytes keyB;
    keyA.clear();
    keyB.clear();
    appendParts(a, keyA);
    appendParts(b, keyB);
    return compareBytes(keyA, keyB);
}

/// Compares the significant parts of two texts. As long as both are ASCII, no key is made: no code of an ASCII unit
/// begins another one's, so codes can be compared one by one.
int comparePart(std::u16string_view a, std::u16string_view b)
{
    const TextKeyTable& codes = table();
    bool unitsWithoutCode = false;
    const auto skip = [&](std::u16string_view text, std::size_t& position) {
        while (position < text.size() && text[position] < TextKeyTable::kAsciiUnits &&
               codes.asciiCode(text[position]) == 0) {
            unitsWithoutCode = true;
            ++position;
        }
    };
    for (std::size_t i = 0, j = 0;; ++i, ++j) {
        skip(a, i);
        skip(b, j);
        const bool endOfA = i == a.size();
        const bool endOfB = j == b.size();
        if (endOfA && endOfB) {
            return unitsWithoutCode ? compareByKeys(a, b) : 0;
        }
        if ((!endOfA && a[i] >= TextKeyTable::kAsciiUnits) || (!endOfB && b[j] >= TextKeyTable::kAsciiUnits)) {
            return compareByKeys(a, b);
        }
        const unsigned codeA = endOfA ? 0 : codes.asciiCode(a[i]);
        const unsigned codeB = endOfB ? 0 : codes.asciiCode(b[j]);
        if (codeA != codeB) {
            return codeA < codeB ? -1 : 1;
        }
    }
}

} // namespace

void appendTextKey(std::u16string_view text, bool ascending, Bytes& key)
{
    const std::size_t start = key.size();
    appendParts(significantPart(text), key);
    if (!ascending) {
        key.push_back(std::byte{0});
        std::transform(key.begin() + static_cast<std::ptrdiff_t>(start), key.end(),
                       key.begin() + static_cast<std::ptrdiff_t>(start), [](std::byte byte) { return ~byte; });
    }
    key.push_back(std::byte{0});
}

int compareTexts(std::u16string_view a, std::u16string_view b)
{
    for (;;) {
        const int order = comparePart(significantPart(a), significantPart(b));
        if (order != 0 || (a.size() <= kTextKeyUnits && b.size() <= kTextKeyUnits)) {
            return order;
        }
        a.remove_prefix(std::min(a.size(), kTextKeyUnits));
        b.remove_prefix(std::min(b.size(), kTextKeyUnits));
    }
}

bool textsEqual(std::u16string_view a, std::u16string_view b)
{
    return a == b || compareTexts(a, b) == 0;
}

} // namespace jet
