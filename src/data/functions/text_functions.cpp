#include "data/functions/field_conversions.h"
#include "data/functions/function.h"
#include "runtime/conversions.h"

#include <QString>

#include <algorithm>
#include <array>

namespace data {
namespace {

using runtime::Value;

/// No function makes a longer text: a slip in a number must not exhaust the memory.
constexpr qint32 kLongestText = 1'000'000;

QString textOf(const Value& value)
{
    return runtime::toText(value);
}

/// The comparison that an optional argument names: 0 by characters, 1 and 2 without regard to case, as where none is
/// named.
Qt::CaseSensitivity comparisonOf(Arguments arguments, std::size_t position)
{
    if (arguments.size() <= position) {
        return Qt::CaseInsensitive;
    }
    const qint32 comparison = countOf(arguments[position], 0);
    if (comparison > 2) {
        refuseArgument();
    }
    return comparison == 0 ? Qt::CaseSensitive : Qt::CaseInsensitive;
}

Value length(Arguments arguments)
{
    return static_cast<qint32>(textOf(arguments[0]).size());
}

Value left(Arguments arguments)
{
    return textOf(arguments[0]).left(countOf(arguments[1], 0));
}

Value right(Arguments arguments)
{
    return textOf(arguments[0]).right(countOf(arguments[1], 0));
}

Value middle(Arguments arguments)
{
    const qint32 start = countOf(arguments[1], 1);
    const qint32 count = arguments.size() > 2 ? countOf(arguments[2], 0) : -1;
    return textOf(arguments[0]).mid(start - 1, count);
}

QString withoutLeadingBlanks(const QString& text)
{
    const auto* const first = std::find_if(text.begin(), text.end(), [](QChar c) { return c != u' '; });
    return text.mid(first - text.begin());
}

QString withoutTrailingBlanks(QString text)
{
    while (text.endsWith(u' ')) {
        text.chop(1);
    }
    return text;
}

Value trim(Arguments arguments)
{
    return withoutLeadingBlanks(withoutTrailingBlanks(textOf(arguments[0])));
}

Value trimLeft(Arguments arguments)
{
    return withoutLeadingBlanks(textOf(arguments[0]));
}

Value trimRight(Arguments arguments)
{
    return withoutTrailingBlanks(textOf(arguments[0]));
}

Value upper(Arguments arguments)
{
    return textOf(arguments[0]).toUpper();
}

Value lower(Arguments arguments)
{
    return textOf(arguments[0]).toLower();
}

/// InStr([start,] text, sought[, comparison]): the place counted from 1, or 0. The comparison needs the start.
Value find(Arguments arguments)
{
    const std::size_t first = arguments.size() > 2 ? 1 : 0;
    const qint32 start = first == 0 ? 1 : countOf(arguments[0], 1);
    const QString text = textOf(arguments[first]);
    if (start > text.size()) {
        return 0;
    }
    return static_cast<qint32>(text.indexOf(textOf(arguments[first + 1]), start - 1, comparisonOf(arguments, 3)) + 1);
}

/// Replace(text, sought, with[, start[, count[, comparison]]]): the text from the start on, with so many replaced.
Value replace(Arguments arguments)
{
    const qint32 start = arguments.size() > 3 ? countOf(arguments[3], 1) : 1;
    const qint32 most = arguments.size() > 4 ? countOf(arguments[4], -1) : -1;
    const Qt::CaseSensitivity comparison = comparisonOf(arguments, 5);
    const QString text = textOf(arguments[0]).mid(start - 1);
    const QString sought = textOf(arguments[1]);
    const QString with = textOf(arguments[2]);
    if (sought.isEmpty()) {
        return text;
    }
    QString result;
    qsizetype position = 0;
    for (qint32 count = 0; most < 0 || count < most; ++count) {
        const qsizetype found = text.indexOf(sought, position, comparison);
        if (found < 0) {
            break;
        }
        result += QStringView(text).mid(position, found - position);
        result += with;
        if (result.size() > kLongestText) {
            refuseArgument();
        }
        position = found + sought.size();
    }
    return result + text.mid(position);
}

Value compare(Arguments arguments)
{
    const int order = textOf(arguments[0]).compare(textOf(arguments[1]), comparisonOf(arguments, 2));
    return std::clamp(order, -1, 1);
}

QString repeated(QChar character, const Value& count)
{
    const qint32 times = countOf(count, 0);
    if (times > kLongestText) {
        refuseArgument();
    }
    return QString(times, character);
}

Value blanks(Arguments arguments)
{
    return repeated(u' ', arguments[0]);
}

QChar characterOf(const Value& code)
{
    const qint32 number = countOf(code, 0);
    if (number > 0xFFFF) {
        refuseArgument();
    }
    return QChar(static_cast<char16_t>(number));
}

/// String(count, character): the character by its code or as the first of a text.
Value repeat(Arguments arguments)
{
    if (const QString* text = std::get_if<QString>(&arguments[1])) {
        if (text->isEmpty()) {
            refuseArgument();
        }
        return repeated(text->front(), arguments[0]);
    }
    return repeated(characterOf(arguments[1]), arguments[0]);
}

Value codeOf(Arguments arguments)
{
    const QString text = textOf(arguments[0]);
    if (text.isEmpty()) {
        refuseArgument();
    }
    return qint32{text.front().unicode()};
}

Value characterOfCode(Arguments arguments)
{
    return QString(characterOf(arguments[0]));
}

Value reverse(Arguments arguments)
{
    QString text = textOf(arguments[0]);
    std::reverse(text.begin(), text.end());
    return text;
}

/// The number at the beginning of a text, blanks skipped, always with a point; 0 where there is none.
Value leadingNumber(Arguments arguments)
{
    QString text = textOf(arguments[0]);
    text.remove(u' ').remove(u'\t').remove(u'\n').remove(u'\r');
    const auto digitAt = [&](qsizetype at) { return at < text.size() && text.at(at) >= u'0' && text.at(at) <= u'9'; };
    qsizetype end = !text.isEmpty() && (text.front() == u'-' || text.front() == u'+') ? 1 : 0;
    while (digitAt(end)) {
        ++end;
    }
    if (end < text.size() && text.at(end) == u'.') {
        ++end;
        while (digitAt(end)) {
            ++end;
        }
    }
    if (end < text.size() && text.at(end).toLower() == u'e') {
        const bool isSigned = end + 1 < text.size() && (text.at(end + 1) == u'-' || text.at(end + 1) == u'+');
        if (digitAt(end + (isSigned ? 2 : 1))) {
            end += isSigned ? 2 : 1;
            while (digitAt(end)) {
                ++end;
            }
        }
    }
    return finite(text.left(end).toDouble());
}

/// A number with a blank in the place of the plus sign, always with a point.
Value textOfNumber(Arguments arguments)
{
    constexpr int kSignificant = 15;
    const double number = runtime::toDouble(arguments[0]);
    const QString text = QString::number(number, 'g', kSignificant);
    return number < 0 ? text : u' ' + text;
}

constexpr auto kText = always<FieldType::Text>;
constexpr auto kLong = always<FieldType::Long>;

constexpr std::array<Function, 21> kFunctions{{
    {u"len", 1, 1, Nulls::Pass, kLong, length},
    {u"left", 2, 2, Nulls::Pass, kText, left},
    {u"right", 2, 2, Nulls::Pass, kText, right},
    {u"mid", 2, 3, Nulls::Pass, kText, middle},
    {u"trim", 1, 1, Nulls::Pass, kText, trim},
    {u"ltrim", 1, 1, Nulls::Pass, kText, trimLeft},
    {u"rtrim", 1, 1, Nulls::Pass, kText, trimRight},
    {u"ucase", 1, 1, Nulls::Pass, kText, upper},
    {u"lcase", 1, 1, Nulls::Pass, kText, lower},
    {u"instr", 2, 4, Nulls::Pass, kLong, find},
    {u"replace", 3, 6, Nulls::Refuse, kText, replace},
    {u"strcomp", 2, 3, Nulls::Pass, always<FieldType::Integer>, compare},
    {u"space", 1, 1, Nulls::Refuse, kText, blanks},
    {u"string", 2, 2, Nulls::Pass, kText, repeat},
    {u"asc", 1, 1, Nulls::Refuse, kLong, codeOf},
    {u"ascw", 1, 1, Nulls::Refuse, kLong, codeOf},
    {u"chr", 1, 1, Nulls::Refuse, kText, characterOfCode},
    {u"chrw", 1, 1, Nulls::Refuse, kText, characterOfCode},
    {u"strreverse", 1, 1, Nulls::Refuse, kText, reverse},
    {u"val", 1, 1, Nulls::Refuse, always<FieldType::Double>, leadingNumber},
    {u"str", 1, 1, Nulls::Pass, kText, textOfNumber},
}};

} // namespace

std::span<const Function> textFunctions()
{
    return kFunctions;
}

} // namespace data
