// The patterns of Like.
#pragma once

#include <QString>

#include <vector>

namespace data {

/// `*` any run of characters, `?` any one, `#` a digit, `[a-z]` one of a list, `[!a-z]` one not in it, everything else
/// itself; upper and lower case count as the same. A wildcard in a list stands for itself (`[*]`), `[]` for nothing.
class LikePattern
{
public:
    /// Throws run-time error 93 for a list that is not closed or a range that runs backwards.
    explicit LikePattern(const QString& pattern);
    [[nodiscard]] bool matches(const QString& text) const;

private:
    struct Range {
        QChar first;
        QChar last;
    };
    struct Element {
        enum class Kind { Character, AnyOne, AnyRun, Digit, List };
        Kind kind = Kind::Character;
        QChar character;
        std::vector<Range> list;
        bool negated = false;

        [[nodiscard]] bool accepts(QChar c) const;
    };
    qsizetype readList(const QString& pattern, qsizetype begin);

    std::vector<Element> elements_;
};

} // namespace data
