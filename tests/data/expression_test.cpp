// What expressions of the dialect yield: operators, literals and functions, case by case.
#include "data/support/small_diary.h"

#include "runtime/run_time_error.h"

#include <QLocale>

namespace data::test {
namespace {

struct Case {
    const char* expression;
    const char* value; ///< as textOf shows it; a number alone behind an exclamation mark is a run-time error
};

void PrintTo(const Case& expression, std::ostream* stream)
{
    *stream << expression.expression;
}

class ExpressionValue : public SmallDiary, public testing::WithParamInterface<Case>
{
protected:
    ExpressionValue() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom)); }
};

/// Reading 4: 12.5 on 11/01/2024 07:30, type 1, "It's high". Reading 2 has no comment.
TEST_P(ExpressionValue, IsAsExpected)
{
    Database database = open();
    const runtime::FixedClock clock({day(2024, 2, 29, 15, 4, 5)});
    database.setClock(clock);
    QString result;
    try {
        Recordset recordset =
            database.openRecordset(QStringLiteral("SELECT %1 AS x FROM BloodSugarLevels WHERE BloodSugerNo = 4")
                                       .arg(QString::fromUtf8(GetParam().expression)));
        ASSERT_EQ(recordset.recordCount(), 1);
        result = textOf(recordset.value(0));
    } catch (const runtime::RunTimeError& error) {
        result = u'!' + QString::number(error.number());
    }
    EXPECT_EQ(result, QString::fromUtf8(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(
    Arithmetic, ExpressionValue,
    testing::Values(Case{"1 + 2 * 3", "7"}, Case{"(1 + 2) * 3", "9"}, Case{"7 / 2", "3.5"}, Case{"6 / 2", "3.0"},
                    Case{"7 \\ 2", "3"}, Case{"-7 \\ 2", "-3"}, Case{"7.5 \\ 2", "4"}, Case{"6.5 \\ 2", "3"},
                    Case{"-7 Mod 3", "-1"}, Case{"10 Mod 4 + 1", "3"}, Case{"2 * 7 Mod 4", "2"},
                    Case{"12 \\ 5 * 2", "1"}, Case{"2 ^ 3 ^ 2", "64.0"}, Case{"-2 ^ 2", "-4.0"}, Case{"2 ^ -1", "0.5"},
                    Case{"1.5 + 1", "2.5"}, Case{"- -3", "3"}, Case{"1e3", "1000.0"}, Case{".5 * 4", "2.0"},
                    Case{"BloodSugerLevel * 2", "25.0"}, Case{"10 - 2 - 3", "5"}, Case{"100 / 10 / 5", "2.0"},
                    Case{"10 - (2 - 3)", "11"}, Case{"'5' + 1", "6.0"}, Case{"'5' * '2'", "10.0"},
                    Case{"-2147483647 - 1", "-2147483648"}, Case{"Int(-2147483647 - 1)", "-2147483648"},
                    Case{"-'3'", "-3.0"}, Case{"True + True", "-2"}, Case{"-True", "1"}));

INSTANTIATE_TEST_SUITE_P(FailingArithmetic, ExpressionValue,
                         testing::Values(Case{"1 / 0", "!11"}, Case{"1 \\ 0", "!11"}, Case{"1 Mod 0", "!11"},
                                         Case{"1 \\ 0.4", "!11"}, Case{"'a' + 1", "!13"}, Case{"'a' * 2", "!13"},
                                         Case{"2147483647 + 1", "!6"}, Case{"65536 * 65536", "!6"},
                                         Case{"10 ^ 400", "!6"}, Case{"(-8) ^ 0.5", "!5"},
                                         Case{"ReadingType / (BloodSugerLevel - 12.5)", "!11"},
                                         Case{"1e308 * 10", "!6"}, Case{"3000000000 \\ 1", "!6"}));

INSTANTIATE_TEST_SUITE_P(
    Texts, ExpressionValue,
    testing::Values(
        Case{"'a' & 'b'", "'ab'"}, Case{"'a' & 1 + 2", "'a3'"}, Case{"'a' & Null", "'a'"}, Case{"Null & Null", "null"},
        Case{"'a' + Null", "null"}, Case{"'a' + 'b'", "'ab'"}, Case{"\"say \"\"hi\"\"\"", "'say \"hi\"'"},
        Case{"'it''s'", "'it's'"}, Case{"\"it's\"", "'it's'"}, Case{"'' & ReadingTime", "'11/01/2024 07:30:00'"},
        Case{"'' & DateValue(ReadingTime)", "'11/01/2024'"}, Case{"1.5 & ''", "'1.5'"},
        Case{"Comment & ' ' & BloodSugerLevel", "'It's high 12.5'"}, Case{"True & ''", "'True'"},
        Case{"Len('abc')", "3"}, Case{"Len(Null)", "null"}, Case{"Len(Comment)", "9"}, Case{"Left('diary', 2)", "'di'"},
        Case{"Right('diary', 2)", "'ry'"}, Case{"Left('a', 5)", "'a'"}, Case{"Left$('diary', 1)", "'d'"},
        Case{"Left('a', -1)", "!5"}, Case{"Left(Null, 1)", "null"}, Case{"Mid('diary', 2, 3)", "'iar'"},
        Case{"Mid('diary', 2)", "'iary'"}, Case{"Mid('ab', 9)", "''"}, Case{"Mid('a', 0)", "!5"},
        Case{"Trim('  a b ')", "'a b'"}, Case{"LTrim('  a ')", "'a '"}, Case{"RTrim('  a ')", "'  a'"},
        Case{"UCase('a\xc3\xa9')", "'A\xc3\x89'"}, Case{"LCase('AB')", "'ab'"}, Case{"InStr('abcabc', 'C')", "3"},
        Case{"InStr(4, 'abcabc', 'c')", "6"}, Case{"InStr(1, 'abc', 'C', 0)", "0"}, Case{"InStr('abc', '')", "1"},
        Case{"InStr(Null, 'a')", "null"}, Case{"Replace('banana', 'AN', 'x')", "'bxxa'"},
        Case{"Replace('banana', 'an', 'x', 1, 1)", "'bxana'"}, Case{"StrComp('a', 'B')", "-1"},
        Case{"StrComp('a', 'A')", "0"}, Case{"StrComp('a', 'A', 0)", "1"}, Case{"Space(3)", "'   '"},
        Case{"String(3, 'xy')", "'xxx'"}, Case{"String(2, 65)", "'AA'"}, Case{"Asc('A')", "65"}, Case{"Asc('')", "!5"},
        Case{"Chr(66)", "'B'"}, Case{"StrReverse('abc')", "'cba'"}, Case{"Val('12.5abc')", "12.5"},
        Case{"Val(' 1 2 ')", "12.0"}, Case{"Val('x')", "0.0"}, Case{"Val('-1e2')", "-100.0"}, Case{"Str(5)", "' 5'"},
        Case{"Str(-5)", "'-5'"}));

INSTANTIATE_TEST_SUITE_P(Numbers, ExpressionValue,
                         testing::Values(Case{"Abs(-5)", "5"}, Case{"Int(-2.5)", "-3.0"}, Case{"Fix(-2.5)", "-2.0"},
                                         Case{"Sgn(-0.1)", "-1"}, Case{"Sqr(9)", "3.0"}, Case{"Sqr(-1)", "!5"},
                                         Case{"Exp(0)", "1.0"}, Case{"Log(1)", "0.0"}, Case{"Log(0)", "!5"},
                                         Case{"Exp(1000)", "!6"}, Case{"Round(2.5)", "2.0"}, Case{"Round(3.5)", "4.0"},
                                         Case{"Round(-2.5)", "-2.0"}, Case{"Round(12.25, 1)", "12.2"},
                                         Case{"Round(12.35, 1)", "12.4"}, Case{"Round(2.675, 2)", "2.68"},
                                         Case{"Round(1.005, 2)", "1.0"}, Case{"Round(5, 1)", "5"},
                                         Case{"Round(BloodSugerLevel)", "12.0"}, Case{"Abs(Null)", "null"}));

INSTANTIATE_TEST_SUITE_P(
    Conversions, ExpressionValue,
    testing::Values(
        Case{"CInt(2.5)", "2"}, Case{"CInt(3.5)", "4"}, Case{"CInt('12')", "12"}, Case{"CInt(40000)", "!6"},
        Case{"CLng(40000.5)", "40000"}, Case{"CLng(3e9)", "!6"}, Case{"CDbl('1.5')", "1.5"}, Case{"CDbl('x')", "!13"},
        Case{"CDbl(Null)", "!94"}, Case{"CSng(0.1)", "0.1"}, Case{"CCur(1.23456)", "1.2346"},
        Case{"CCur(1.00005)", "1.0"}, Case{"CBool(2)", "True"}, Case{"CBool('false')", "False"},
        Case{"CBool('x')", "!13"}, Case{"CByte(255)", "255"}, Case{"CByte(256)", "!6"}, Case{"CStr(1.5)", "'1.5'"},
        Case{"CStr(Null)", "!94"}, Case{"CStr(ReadingTime)", "'11/01/2024 07:30:00'"},
        Case{"CDate('03/04/2024')", "03/04/2024 00:00:00"}, Case{"Cdate('3/apr/2024')", "03/04/2024 00:00:00"},
        Case{"CDate('2024-04-03 10:30')", "03/04/2024 10:30:00"}, Case{"CDate('13/13/2024')", "!13"},
        Case{"CDate(45293)", "02/01/2024 00:00:00"}, Case{"CDate(Null)", "!94"}, Case{"CDate('')", "!13"},
        Case{"CDate('12:15')", "30/12/1899 12:15:00"}, Case{"Format(BloodSugerLevel, '#0.00')", "'12.50'"},
        Case{"Format(ReadingTime, 'dd mmm yyyy hh:mm')", "'11 Jan 2024 07:30'"}, Case{"Format(Null, '0')", "''"},
        Case{"IsNull(Null)", "True"}, Case{"IsNull(Comment)", "False"}, Case{"IsNumeric('1.5')", "True"},
        Case{"IsNumeric('x')", "False"}, Case{"IsNumeric(Null)", "False"}, Case{"IsDate('1/2/2024')", "True"},
        Case{"IsDate('1/13/2024')", "False"}, Case{"IsDate(ReadingTime)", "True"}, Case{"IsDate(5)", "False"}));

INSTANTIATE_TEST_SUITE_P(
    Dates, ExpressionValue,
    testing::Values(
        Case{"#1/2/2024#", "02/01/2024 00:00:00"}, Case{"#31/1/2024#", "31/01/2024 00:00:00"},
        Case{"#2024-01-02#", "02/01/2024 00:00:00"}, Case{"#1/2/2024 10:30 PM#", "02/01/2024 22:30:00"},
        Case{"#12:00 AM#", "30/12/1899 00:00:00"}, Case{"#1/2/24#", "02/01/2024 00:00:00"},
        Case{"#1/2/31#", "02/01/1931 00:00:00"}, Case{"#2 Jan 2024#", "02/01/2024 00:00:00"},
        Case{"#13/13/2024#", "!3075"}, Case{"#x#", "!3075"}, Case{"Date()", "29/02/2024 00:00:00"},
        Case{"Now()", "29/02/2024 15:04:05"}, Case{"Time()", "30/12/1899 15:04:05"}, Case{"Year(ReadingTime)", "2024"},
        Case{"Month(ReadingTime)", "1"}, Case{"Day(ReadingTime)", "11"}, Case{"Hour(ReadingTime)", "7"},
        Case{"Minute(ReadingTime)", "30"}, Case{"Second(#10:11:12#)", "12"}, Case{"Year(Null)", "null"},
        Case{"Year('x')", "!13"}, Case{"Weekday(#1/11/2024#)", "5"}, Case{"Weekday(#1/11/2024#, 2)", "4"},
        Case{"Weekday(#1/11/2024#, 8)", "!5"}, Case{"DateAdd('m', 1, #1/31/2024#)", "29/02/2024 00:00:00"},
        Case{"DateAdd('yyyy', -1, #2/29/2024#)", "28/02/2023 00:00:00"},
        Case{"DateAdd('d', 3, ReadingTime)", "14/01/2024 07:30:00"},
        Case{"DateAdd('h', -8, ReadingTime)", "10/01/2024 23:30:00"},
        Case{"DateAdd('n', 45, ReadingTime)", "11/01/2024 08:15:00"},
        Case{"DateAdd('q', 1, #11/30/2023#)", "29/02/2024 00:00:00"},
        Case{"DateAdd('ww', 1, #1/1/2024#)", "08/01/2024 00:00:00"}, Case{"DateAdd('ww', 613566757, #1/1/2024#)", "!5"},
        Case{"DateAdd('ww', -2147483647, #1/1/2024#)", "!5"}, Case{"DateAdd('x', 1, Now())", "!5"},
        Case{"DateAdd('yyyy', 9000, Now())", "!5"}, Case{"DateDiff('d', #1/1/2024 23:59#, #1/2/2024#)", "1"},
        Case{"DateDiff('yyyy', #12/31/2023#, #1/1/2024#)", "1"}, Case{"DateDiff('m', #1/31/2024#, #3/1/2024#)", "2"},
        Case{"DateDiff('h', #10:59#, #11:00#)", "1"}, Case{"DateDiff('n', #10:00#, #11:30#)", "90"},
        Case{"DateDiff('s', #10:00#, #10:00:05#)", "5"}, Case{"DateDiff('ww', #1/6/2024#, #1/7/2024#)", "1"},
        Case{"DateDiff('w', #1/1/2024#, #1/14/2024#)", "1"}, Case{"DateDiff('d', #1/2/2024#, #1/1/2024#)", "-1"},
        Case{"DatePart('q', #5/1/2024#)", "2"}, Case{"DatePart('y', #2/1/2024#)", "32"},
        Case{"DatePart('ww', #1/7/2024#)", "2"}, Case{"DatePart('ww', #1/1/2023#, 2, 2)", "52"},
        Case{"DatePart('ww', #12/30/2024#, 2, 2)", "1"}, Case{"DatePart('w', #1/7/2024#)", "1"},
        Case{"DateSerial(2024, 2, 30)", "01/03/2024 00:00:00"}, Case{"DateSerial(2024, 14, 1)", "01/02/2025 00:00:00"},
        Case{"DateSerial(2024, 1, 0)", "31/12/2023 00:00:00"}, Case{"DateSerial(99, 1, 1)", "01/01/1999 00:00:00"},
        Case{"TimeSerial(10, 90, 0)", "30/12/1899 11:30:00"},
        Case{"DateValue('10/01/2024 07:00')", "10/01/2024 00:00:00"},
        Case{"TimeValue('10/01/2024 07:00')", "30/12/1899 07:00:00"}, Case{"MonthName(2)", "'February'"},
        Case{"MonthName(2, True)", "'Feb'"}, Case{"MonthName(13)", "!5"}, Case{"WeekdayName(1)", "'Sunday'"},
        Case{"WeekdayName(1, True, 2)", "'Mon'"}, Case{"ReadingTime + 1", "12/01/2024 07:30:00"},
        Case{"ReadingTime - #1/11/2024#", "0.3125"},
        Case{"DateValue(ReadingTime) + TimeValue('18:00')", "11/01/2024 18:00:00"}));

INSTANTIATE_TEST_SUITE_P(
    Logic, ExpressionValue,
    testing::Values(Case{"True", "True"}, Case{"1 = 1", "True"}, Case{"1 = 2", "False"}, Case{"1 = Null", "null"},
                    Case{"Null Is Null", "True"}, Case{"Null Is Not Null", "False"}, Case{"Not True", "False"},
                    Case{"Not Null", "null"}, Case{"Null And False", "False"}, Case{"Null And True", "null"},
                    Case{"Null Or True", "True"}, Case{"True Xor True", "False"}, Case{"True Xor Null", "null"},
                    Case{"True Eqv False", "False"}, Case{"False Imp False", "True"}, Case{"True Imp False", "False"},
                    Case{"Null Imp True", "True"}, Case{"Not 1 = 2", "True"}, Case{"1 = 1 And 2 = 3 Or True", "True"},
                    Case{"'a' = 'A'", "True"}, Case{"'a' < 'B'", "True"}, Case{"'a' = 'a '", "True"},
                    Case{"'a' & '' = 'A'", "True"}, Case{"3 Between 1 And 3", "True"},
                    Case{"3 Not Between 1 And 2", "True"}, Case{"Null Between 1 And 2", "null"},
                    Case{"2 In (1, 2)", "True"}, Case{"'B' In ('a', 'b')", "True"}, Case{"3 Not In (1, 2)", "True"},
                    Case{"Null In (1)", "null"}, Case{"1 =< 1", "True"}, Case{"2 => 3", "False"},
                    Case{"1 <> 2", "True"}, Case{"'a' = 1", "!3464"}, Case{"Comment > 5", "!3464"},
                    Case{"ReadingTime = '10/01/2024'", "!3464"}, Case{"True = -1", "True"},
                    Case{"ReadingTime > 45000", "True"}, Case{"(1 = 1) + 0", "-1"}));

INSTANTIATE_TEST_SUITE_P(Likes, ExpressionValue,
                         testing::Values(Case{"'Bread' Like 'b*'", "True"}, Case{"'Bread' Like '*EAD'", "True"},
                                         Case{"'Bread' Like 'br?ad'", "True"}, Case{"'Bread' Like 'br?'", "False"},
                                         Case{"'a1' Like 'a#'", "True"}, Case{"'ab' Like 'a#'", "False"},
                                         Case{"'cat' Like '[a-c]at'", "True"}, Case{"'rat' Like '[a-c]at'", "False"},
                                         Case{"'rat' Like '[!a-c]at'", "True"}, Case{"'5*' Like '5[*]'", "True"},
                                         Case{"'55' Like '5[*]'", "False"}, Case{"'a-b' Like 'a[-x]b'", "True"},
                                         Case{"'a' Like '[]a'", "True"}, Case{"'a[b' Like 'a[[]b'", "True"},
                                         Case{"'' Like '*'", "True"}, Case{"Null Like '*'", "null"},
                                         Case{"'a' Not Like 'b'", "True"}, Case{"Comment Like \"it's*\"", "True"},
                                         Case{"'a' Like '[a'", "!93"}, Case{"'b' Like '[c-a]'", "!93"},
                                         Case{"12.5 Like '12*'", "True"}, Case{"'aXbXc' Like 'a*b*c'", "True"},
                                         Case{"'aab' Like '*ab'", "True"}, Case{"'50%' Like '50%'", "True"},
                                         Case{"'50x' Like '50%'", "False"}, Case{"'a_b' Like 'a_c'", "False"}));

INSTANTIATE_TEST_SUITE_P(
    Choices, ExpressionValue,
    testing::Values(Case{"IIf(1 = 1, 'yes', 'no')", "'yes'"}, Case{"IIf(Null, 1, 2)", "2"},
                    Case{"IIf(ReadingType = 1, 5, 1 / 0)", "5.0"}, Case{"IIf(True, 1, 'x')", "'1'"},
                    Case{"IIf(True, ReadingTime, Null)", "11/01/2024 07:30:00"}, Case{"Nz(Null, 3)", "3"},
                    Case{"Nz(Comment, '-')", "'It's high'"}, Case{"Nz(Null)", "''"}, Case{"Nz(ReadingType)", "1"},
                    Case{"Choose(2, 'a', 'b')", "'b'"}, Case{"Choose(3, 'a', 'b')", "null"},
                    Case{"Choose(Null, 1)", "!94"}, Case{"Switch(False, 1, True, 2)", "2"},
                    Case{"Switch(False, 1)", "null"}, Case{"(SELECT Max(Type) FROM BloodSugarReadingTypes)", "8"},
                    Case{"(SELECT Text FROM BloodSugarReadingTypes WHERE Type = BloodSugarLevels.ReadingType)",
                         "'Getting Up'"},
                    Case{"(SELECT Type FROM BloodSugarReadingTypes WHERE Type > 99)", "null"},
                    Case{"(SELECT Type FROM BloodSugarReadingTypes)", "!3354"}));

INSTANTIATE_TEST_SUITE_P(
    Mistakes, ExpressionValue,
    testing::Values(Case{"Nonsense(1)", "!3085"}, Case{"Left('a')", "!3075"}, Case{"IIf(1, 2)", "!3075"},
                    Case{"Unknown", "!3061"}, Case{"BloodSugarLevels.Unknown", "!3061"}, Case{"1 +", "!3075"},
                    Case{"(1", "!3075"}, Case{"1)", "!3075"}, Case{"'a", "!3075"}, Case{"[a", "!3075"},
                    Case{"1 2", "!3075"}, Case{"Sum(Sum(ReadingType))", "!3075"}, Case{"Len(*)", "!3075"},
                    Case{"12abc", "!3075"}, Case{"1; DROP", "!3075"}, Case{"1e999", "!6"}, Case{"@a", "!3075"},
                    Case{"load_extension('x')", "!3085"}, Case{"fn_left('a', 1)", "!3085"}));

} // namespace
} // namespace data::test
