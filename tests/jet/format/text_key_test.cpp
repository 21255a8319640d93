#include "jet/format/text_key.h"

#include "jet/format/hex.h"
#include "jet/format/text_key_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

using namespace jet;
using jet::test::toHex;

namespace {

std::string keyOf(std::u16string_view text, bool ascending = true)
{
    Bytes key;
    appendTextKey(text, ascending, key);
    return toHex(key);
}

int sign(int number)
{
    return number < 0 ? -1 : (number > 0 ? 1 : 0);
}

int orderOfKeys(std::u16string_view a, std::u16string_view b)
{
    Bytes keyA;
    Bytes keyB;
    appendTextKey(a, true, keyA);
    appendTextKey(b, true, keyB);
    return keyA < keyB ? -1 : (keyB < keyA ? 1 : 0);
}

/// A text with the escapes of the vector file.
std::u16string unescaped(const std::string& text)
{
    std::u16string result;
    for (std::size_t i = 0; i < text.size();) {
        if (text.compare(i, 2, "\\u") == 0) {
            result += static_cast<char16_t>(std::stoi(text.substr(i + 2, 4), nullptr, 16));
            i += 6;
        } else {
            result += static_cast<char16_t>(static_cast<unsigned char>(text[i]));
            i += 1;
        }
    }
    return result;
}

struct Vector {
    std::u16string text;
    std::string ascending;
    std::string descending;
};

std::vector<Vector> sampleVectors()
{
    std::vector<Vector> vectors;
    std::ifstream file(std::filesystem::path(QUILLON_JET_SAMPLES) / "textkeys-vectors.tsv");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) {
            continue;
        }
        std::istringstream fields(line);
        std::string text;
        Vector vector;
        std::getline(fields, text, '\t');
        std::getline(fields, vector.ascending, '\t');
        std::getline(fields, vector.descending, '\t');
        vector.text = unescaped(text);
        vectors.push_back(std::move(vector));
    }
    return vectors;
}

/// Random text of units that make order interesting: letters of both cases, accents, marks, ties, blanks, kana, others.
class RandomTexts
{
public:
    explicit RandomTexts(unsigned seed) : random_(seed) {}

    std::u16string operator()(std::size_t longest)
    {
        static constexpr std::u16string_view kUnits =
            u"aAbBzZ09 -'.,()\u00c4\u00e4\u00e9\u00c9\u00df\u00c6\u00e6\u0301\u0308\u3041\u3042\u304b\u30ab\u30fc\u0416"
            u"\u03b1\u4e00\u00a0\u0001\t\ufb03\u01fc";
        std::u16string text(random_() % (longest + 1), u' ');
        for (char16_t& unit : text) {
            unit = kUnits[random_() % kUnits.size()];
        }
        return text;
    }

private:
    std::mt19937 random_;
};

} // namespace

// --- Keys ------------------------------------------------------------------------------------------------------------

TEST(TextKey, AnEmptyTextIsItsEndMarksAlone)
{
    EXPECT_EQ(keyOf(u""), "0100");
    EXPECT_EQ(keyOf(u"", false), "feff00");
}

TEST(TextKey, LettersOfBothCasesHaveTheSameCode)
{
    EXPECT_EQ(keyOf(u"A"), "4a0100");
    EXPECT_EQ(keyOf(u"a"), "4a0100");
}

TEST(TextKey, BlanksCountInsideButNotAtTheEnd)
{
    EXPECT_EQ(keyOf(u"Meal + 2"), "60514a5e072c073a0100");
    EXPECT_EQ(keyOf(u"Meal + 2", false), "9faeb5a1f8d3f8c5feff00");
    EXPECT_EQ(keyOf(u"A  "), "4a0100");
    EXPECT_EQ(keyOf(u"   "), "0100");
}

TEST(TextKey, ApostrophesAndHyphensComeLastAndTellTheirPlace)
{
    EXPECT_EQ(keyOf(u"O'Brien's"), "644c695951626b01010101800b0680801f068000");
    EXPECT_EQ(keyOf(u"re-do"), "69514f6401010101800f068200");
    EXPECT_EQ(keyOf(u"-a"), "4a010101018007068200");
    EXPECT_EQ(keyOf(u"--"), "01010101800706828007068200");
}

TEST(TextKey, AccentsFollowTheCodesWithFillersForPlainLetters)
{
    EXPECT_EQ(keyOf(u"\u00c4pfel"), "4a6653515e011300");
    EXPECT_EQ(keyOf(u"caf\u00e9"), "4d4a5351010202020e00");
    EXPECT_EQ(keyOf(u"caf\u00e9", false), "b2b5acaefefdfdfdf1ff00");
}

TEST(TextKey, ACombiningMarkAddsToTheAccentBeforeIt)
{
    EXPECT_EQ(keyOf(u"e\u0301"), "51010e00"); // the filler 02 of the letter and 0C
    EXPECT_EQ(keyOf(u"\u0301e"), "51010c00"); // nothing stands before: the mark is the first accent itself
    EXPECT_EQ(keyOf(u"\u03b1\u0301"), "790c010e00");
}

TEST(TextKey, ATieAfterAnAccentCountsFromTheAccents)
{
    EXPECT_EQ(keyOf(u"\u00e9-\u00e9"), "5151010e0e010101800b068200");
}

TEST(TextKey, LettersThatStandForTwoCountAsOne)
{
    EXPECT_EQ(keyOf(u"\u00df"), keyOf(u"ss"));
    EXPECT_EQ(keyOf(u"\u00e6"), keyOf(u"ae"));
    EXPECT_EQ(keyOf(u"\u00e6-"), "4a5101010101800b068200"); // one unit before the hyphen
}

TEST(TextKey, KanaTellTheirSizeLast)
{
    EXPECT_EQ(keyOf(u"\u304b"), "7f0a010101ff0280ff8000");   // full kana alone leave no group
    EXPECT_EQ(keyOf(u"\u3041"), "7f02010101a0ff0280ff8000"); // one small one: 80 | 2 << 4
    EXPECT_EQ(keyOf(u"\u304b-"), "7f0a010101ff0280ff80ff01800b068200");
}

TEST(TextKey, PairsOfSurrogatesAreOrderedUnitByUnit)
{
    EXPECT_EQ(keyOf(u"\xd83d\xde00"), "b03fb6fc013f3f00");
}

TEST(TextKey, OnlyTheFirst255UnitsCount)
{
    const std::u16string longest(255, u'x');
    EXPECT_EQ(keyOf(longest + u"a"), keyOf(longest));
    EXPECT_EQ(keyOf(longest).size(), 2 * (255 + 2));
    EXPECT_EQ(keyOf(std::u16string(254, u' ') + u"xy"), keyOf(std::u16string(254, u' ') + u"x"));
}

TEST(TextKey, TheLongestPossibleKeysFitTheirBuffers)
{
    for (const char16_t unit : std::u16string_view(u"'\u00e9\u01fc\u05f0\ufb03\u304c\u0301\u32d0")) {
        for (const char16_t other : std::u16string_view(u"'\u00e9\u0301a")) {
            std::u16string text;
            for (int i = 0; i < 128; ++i) {
                text += unit;
                text += other;
            }
            EXPECT_LE(keyOf(text).size() / 2, 1797U);
            EXPECT_LE(keyOf(std::u16string(255, unit)).size() / 2, 1797U);
        }
    }
}

TEST(TextKey, AKeyHasLessThan1300Bytes)
{
    const std::u16string longest =
        std::u16string(254, u'\u05f0') + u"\u00e9"; // codes of four bytes, an accent behind all
    EXPECT_EQ(keyOf(longest).size() / 2, 254U * 4 + 1 + 1 + 255 + 1);
}

TEST(TextKey, KeysOfSampleTextsAreThoseOfAnIndependentWriter)
{
    for (const Vector& vector : sampleVectors()) {
        EXPECT_EQ(keyOf(vector.text), vector.ascending) << toHex(std::as_bytes(std::span(vector.text)));
        EXPECT_EQ(keyOf(vector.text, false), vector.descending) << toHex(std::as_bytes(std::span(vector.text)));
    }
}

TEST(TextKey, TheTableCoversEveryUnitOnceInOrder)
{
    const std::span<const TextKeyRun> runs = textKeyRuns();
    ASSERT_FALSE(runs.empty());
    EXPECT_EQ(runs.front().first, 0);
    EXPECT_TRUE(std::is_sorted(runs.begin(), runs.end(),
                               [](const TextKeyRun& a, const TextKeyRun& b) { return a.first < b.first; }));
}

// The text file is what people read and change; the compiled table is made from it by a script.
TEST(TextKey, TheCompiledTableSaysWhatItsTextFileSays)
{
    std::ifstream file(QUILLON_TEXT_KEY_TABLE);
    ASSERT_TRUE(file);
    unsigned unit = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) {
            continue;
        }
        const std::size_t blank = line.find(' ');
        const auto first = static_cast<unsigned>(std::stoul(line, nullptr, 16));
        const auto last = line[4] == '-' ? static_cast<unsigned>(std::stoul(line.substr(5), nullptr, 16)) : first;
        const std::string adds = line.substr(blank + 1);
        ASSERT_EQ(first, unit);
        for (; unit <= last; ++unit) {
            const std::u16string text(1, static_cast<char16_t>(unit));
            std::string expected;
            if (adds == "-" || unit == u' ') {
                expected = "0100";
            } else if (adds[0] == '\'') {
                expected = "01010101800706" + adds.substr(1) + "00";
            } else if (adds[0] == '~') {
                expected = std::stoi(adds.substr(1), nullptr, 16) > 2 ? "01" + adds.substr(1) + "00" : "0100";
            } else {
                const std::size_t slash = adds.find('/');
                const std::size_t mark = adds.find('!');
                std::string code = adds.substr(0, adds.find_first_of("+/!"));
                if (adds.find("++") != std::string::npos) {
                    Bytes number(2);
                    putBigEndian(MutableBytes(number), 0,
                                 static_cast<std::uint16_t>(std::stoul(code, nullptr, 16) + unit - first));
                    code = toHex(number);
                }
                expected = code + "01";
                if (slash != std::string::npos) {
                    expected += adds.substr(slash + 1, mark == std::string::npos ? mark : mark - slash - 1);
                }
                if (mark != std::string::npos) {
                    expected += std::string("0101") + (adds[mark + 1] == '2' ? "a0" : "") + "ff0280ff80";
                }
                expected += "00";
            }
            std::transform(expected.begin(), expected.end(), expected.begin(),
                           [](char digit) { return static_cast<char>(std::tolower(digit)); });
            ASSERT_EQ(keyOf(text), expected) << line;
        }
    }
    EXPECT_EQ(unit, 0x10000U);
}

// --- Comparing -------------------------------------------------------------------------------------------------------

TEST(TextOrder, CaseDoesNotCount)
{
    EXPECT_EQ(compareTexts(u"Butter", u"bUTTER"), 0);
    EXPECT_TRUE(textsEqual(u"Butter", u"BUTTER"));
    EXPECT_FALSE(textsEqual(u"Butter", u"Buttes"));
}

TEST(TextOrder, ATextComesBeforeItsContinuation)
{
    EXPECT_LT(compareTexts(u"", u"a"), 0);
    EXPECT_LT(compareTexts(u"meal", u"meals"), 0);
    EXPECT_GT(compareTexts(u"meals", u"meal"), 0);
}

TEST(TextOrder, BlanksComeBeforeSignsThenDigitsThenLetters)
{
    const std::vector<std::u16string> ordered{u"", u"a b", u"a.b", u"a+b", u"a1b", u"aab", u"abb"};
    EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end(),
                               [](const auto& a, const auto& b) { return compareTexts(a, b) < 0; }));
    EXPECT_EQ(compareTexts(u"a  ", u"a"), 0);
}

TEST(TextOrder, AHyphenOnlyBreaksATie)
{
    EXPECT_LT(compareTexts(u"coop", u"co-op"), 0);
    EXPECT_LT(compareTexts(u"co-op", u"coops"), 0);
    EXPECT_NE(compareTexts(u"co-op", u"coo-p"), 0);
}

TEST(TextOrder, AnAccentOnlyBreaksATie)
{
    EXPECT_LT(compareTexts(u"resume", u"r\u00e9sum\u00e9"), 0);
    EXPECT_LT(compareTexts(u"r\u00e9sum\u00e9", u"resumes"), 0);
}

TEST(TextOrder, LongTextsAreToldApartBehindThePartThatKeysHold)
{
    const std::u16string start(255, u'x');
    EXPECT_LT(compareTexts(start + u"a", start + u"b"), 0);
    EXPECT_LT(compareTexts(start, start + u"a"), 0);
    EXPECT_EQ(compareTexts(start + u"A  ", start + u"a"), 0);
    EXPECT_LT(compareTexts(start + std::u16string(300, u'y') + u"1", start + std::u16string(300, u'y') + u"2"), 0);
    EXPECT_LT(compareTexts(std::u16string(254, u'x') + u"aZ", std::u16string(254, u'x') + u"bA"), 0);
}

TEST(TextOrder, IsTheOrderOfKeysForRandomTexts)
{
    RandomTexts randomText(20260131);
    for (int i = 0; i < 50000; ++i) {
        const std::u16string a = randomText(5);
        const std::u16string b = randomText(5);
        ASSERT_EQ(sign(compareTexts(a, b)), orderOfKeys(a, b))
            << toHex(std::as_bytes(std::span(a))) << " and " << toHex(std::as_bytes(std::span(b)));
        ASSERT_EQ(textsEqual(a, b), orderOfKeys(a, b) == 0);
    }
}

TEST(TextOrder, IsTheOrderOfKeysForEveryPairOfAsciiUnits)
{
    for (char16_t a = 0; a < 0x80; ++a) {
        for (char16_t b = 0; b < 0x80; ++b) {
            const std::u16string textA{u'm', a, u'n'};
            const std::u16string textB{u'm', b, u'n'};
            ASSERT_EQ(sign(compareTexts(textA, textB)), orderOfKeys(textA, textB)) << int{a} << ' ' << int{b};
        }
    }
}

TEST(TextOrder, DescendingKeysHaveTheOppositeOrder)
{
    RandomTexts randomText(7);
    for (int i = 0; i < 30000; ++i) {
        const std::u16string a = randomText(6);
        const std::u16string b = randomText(6);
        Bytes keyA;
        Bytes keyB;
        appendTextKey(a, false, keyA);
        appendTextKey(b, false, keyB);
        const int order = keyA < keyB ? -1 : (keyB < keyA ? 1 : 0);
        ASSERT_EQ(order, -orderOfKeys(a, b))
            << toHex(std::as_bytes(std::span(a))) << " and " << toHex(std::as_bytes(std::span(b)));
    }
}
