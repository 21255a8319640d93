#include "data/functions/like_pattern.h"

#include "runtime/run_time_error.h"

#include <algorithm>
#include <optional>

namespace data {
namespace {

[[noreturn]] void refuse()
{
    throw runtime::RunTimeError(runtime::ErrorNumber::InvalidPattern);
}

} // namespace

LikePattern::LikePattern(const QString& pattern)
{
    const QString folded = pattern.toLower();
    for (qsizetype i = 0; i < folded.size(); ++i) {
        Element element;
        const QChar c = folded.at(i);
        if (c == u'[') {
            i = readList(folded, i);
            continue;
        }
        if (c == u'*') {
            element.kind = Element::Kind::AnyRun;
        } else if (c == u'?') {
            element.kind = Element::Kind::AnyOne;
        } else if (c == u'#') {
            element.kind = Element::Kind::Digit;
        } else {
            element.character = c;
        }
        elements_.push_back(std::move(element));
    }
}

/// Reads the list whose bracket opens at `begin`; returns where it closes.
qsizetype LikePattern::readList(const QString& pattern, qsizetype begin)
{
    const qsizetype close = pattern.indexOf(u']', begin + 1);
    if (close < 0) {
        refuse();
    }
    Element element;
    element.kind = Element::Kind::List;
    qsizetype i = begin + 1;
    if (i + 1 < close && pattern.at(i) == u'!') {
        element.negated = true;
        ++i;
    }
    for (; i < close; ++i) {
        Range range{pattern.at(i), pattern.at(i)};
        if (i + 2 < close && pattern.at(i + 1) == u'-') {
            range.last = pattern.at(i + 2);
            i += 2;
        }
        if (range.last < range.first) {
            refuse();
        }
        element.list.push_back(range);
    }
    if (!element.list.empty()) {
        elements_.push_back(std::move(element));
    }
    return close;
}

bool LikePattern::Element::accepts(QChar c) const
{
    switch (kind) {
    case Kind::Character:
        return c == character;
    case Kind::AnyOne:
        return true;
    case Kind::Digit:
        return c >= u'0' && c <= u'9';
    case Kind::List:
        return negated != std::any_of(list.begin(), list.end(),
                                      [c](const Range& range) { return range.first <= c && c <= range.last; });
    case Kind::AnyRun:
        break;
    }
    return false;
}

bool LikePattern::matches(const QString& text) const
{
    const QString folded = text.toLower();
    std::size_t element = 0;
    qsizetype position = 0;
    // Where to go on when the match fails: behind the last run, which then takes one more character. Earlier runs need
    // not be tried again.
    std::optional<std::size_t> afterRun;
    qsizetype runEnd = 0;
    while (position < folded.size()) {
        if (element < elements_.size() && elements_[element].kind == Element::Kind::AnyRun) {
            afterRun = ++element;
            runEnd = position;
        } else if (element < elements_.size() && elements_[element].accepts(folded.at(position))) {
            ++element;
            ++position;
        } else if (afterRun) {
            element = *afterRun;
            position = ++runEnd;
        } else {
            return false;
        }
    }
    return std::all_of(elements_.begin() + static_cast<std::ptrdiff_t>(element), elements_.end(),
                       [](const Element& rest) { return rest.kind == Element::Kind::AnyRun; });
}

} // namespace data
