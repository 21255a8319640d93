#include "jet/format/text_codec.h"
#include "jet/format/utf.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

TEST(TextCodec, WritesLatinTextInOneByteACharacter)
{
    EXPECT_EQ(toHex(encodeText(u"caf\u00E9, d\u00E9j\u00E0 vu", true)), "fffe636166e92c2064e96ae0207675");
}

TEST(TextCodec, WritesPlainTextWhereTheColumnIsNotCompressible)
{
    EXPECT_EQ(toHex(encodeText(u"abc", false)), "610062006300");
}

TEST(TextCodec, WritesShortTextPlain)
{
    EXPECT_EQ(toHex(encodeText(u"", true)), "");
    EXPECT_EQ(toHex(encodeText(u"ab", true)), "61006200");
    EXPECT_EQ(toHex(encodeText(u"abc", true)), "fffe616263");
}

TEST(TextCodec, WritesTextOfMoreThan1024CharactersPlain)
{
    EXPECT_EQ(encodeText(std::u16string(1024, u'x'), true).size(), 1026U);
    EXPECT_EQ(encodeText(std::u16string(1025, u'x'), true).size(), 2050U);
}

TEST(TextCodec, WritesTextWithAnyOtherCharacterPlain)
{
    EXPECT_EQ(toHex(encodeText(u"5 \u20AC", true)), "35002000ac20");
    EXPECT_EQ(toHex(encodeText(std::u16string(u"a\0b", 3), true)), "610000006200");
}

TEST(TextCodec, DropsALeadingMarkThatWouldBeTakenForCompression)
{
    EXPECT_EQ(toHex(encodeText(u"\uFEFF\uFEFF\u0416a", true)), "16046100");
    EXPECT_EQ(toHex(encodeText(u"\uFEFF", false)), "");
}

TEST(TextCodec, ReadsAllThreeForms)
{
    EXPECT_EQ(decodeText(fromHex("610062006300")), u"abc");
    EXPECT_EQ(decodeText(fromHex("FFFE616263")), u"abc");
    EXPECT_EQ(decodeText(fromHex("FFFE4100132000 42")), u"A\u2013B");
    EXPECT_EQ(decodeText(fromHex("FFFE0013201420")), u"\u2013\u2014") << "it may end in either mode";
    EXPECT_EQ(decodeText({}), u"");
    EXPECT_EQ(decodeText(fromHex("FFFE")), u"");
    EXPECT_EQ(decodeText(fromHex("FFFE61620000")), u"ab") << "two switches in a row say nothing";
}

TEST(TextCodec, GivesBackWhatWasWritten)
{
    for (const std::u16string text : {u"a", u"Frühstück", u"\u2013\u2014", u"x\U0001F34Ey", u"\u00FF\u00FE\u00FF"}) {
        EXPECT_EQ(decodeText(encodeText(text, true)), text);
        EXPECT_EQ(decodeText(encodeText(text, false)), text);
    }
}

TEST(TextCodec, RefusesHalfACharacter)
{
    EXPECT_THAT([] { static_cast<void>(decodeText(fromHex("610062"))); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([] { static_cast<void>(decodeText(fromHex("FFFE610013"))); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([] { static_cast<void>(decodeText(fromHex("FFFE61001300"))); }, throwsError(ErrorCode::Corrupt));
}

TEST(Utf, ConvertsEveryLengthOfCharacter)
{
    const std::u16string wide = u"A\u00E9\u20AC\U0001F34E";
    const std::string narrow = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8D\x8E";
    EXPECT_EQ(toUtf8(wide), narrow);
    EXPECT_EQ(toUtf16(narrow), wide);
}

TEST(Utf, ReplacesLoneSurrogates)
{
    const std::u16string high{u'a', char16_t{0xD83C}, u'b'};
    const std::u16string low{char16_t{0xDF4E}};
    const std::u16string atEnd{char16_t{0xD83C}};
    EXPECT_EQ(toUtf8(high), "a\xEF\xBF\xBD"
                            "b");
    EXPECT_EQ(toUtf8(low), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(atEnd), "\xEF\xBF\xBD");
}

TEST(Utf, ReplacesBrokenSequences)
{
    EXPECT_EQ(toUtf16("a\x80z"), u"a\uFFFDz") << "a continuation alone";
    EXPECT_EQ(toUtf16("a\xC3"), u"a\uFFFD") << "cut short";
    EXPECT_EQ(toUtf16("\xC0\x80"), u"\uFFFD\uFFFD") << "too long a form";
    EXPECT_EQ(toUtf16("\xE0\x80\x80"), u"\uFFFD\uFFFD\uFFFD") << "too long a form";
    EXPECT_EQ(toUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "a surrogate";
    EXPECT_EQ(toUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD") << "past the last character";
    EXPECT_EQ(toUtf16("\xFF"), u"\uFFFD");
}

} // namespace
} // namespace jet
