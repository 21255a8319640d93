// Words of an SQL text in Jet's dialect.
#pragma once

#include "runtime/value.h"

#include <QString>

#include <vector>

namespace data {

/// A part of an SQL text, for messages.
struct TextRange {
    qsizetype begin = 0;
    qsizetype end = 0;
};

struct Token {
    enum class Kind {
        Word,      ///< a name or a word of the language; which of them, the grammar decides
        Bracketed, ///< [a name], never a word of the language
        Text,      ///< 'a text' or "a text"
        Number,
        Date,   ///< #1/31/2024 10:30#
        Symbol, ///< an operator or a punctuation mark
        End,
    };
    Kind kind = Kind::End;
    /// Word, Bracketed, Text: without its marks. Symbol: as written, but `=<` as `<=`, `=>` as `>=`, and `!` as the dot
    /// that it stands for.
    QString text;
    runtime::Value value; ///< Number: a whole number that fits 32 bits, or a double; Date: the date
    TextRange place;

    [[nodiscard]] bool isSymbol(QStringView symbol) const { return kind == Kind::Symbol && text == symbol; }
    /// Whether it is that word of the language, in either case.
    [[nodiscard]] bool isWord(QStringView word) const
    {
        return kind == Kind::Word && QStringView(text).compare(word, Qt::CaseInsensitive) == 0;
    }
};

/// The tokens of the text, the last one being End. Blanks and semicolons at its end are dropped, and so is the null
/// character with which stored queries end. Throws run-time error 3075 for a quote or bracket that is not closed, a
/// malformed date, and characters that no statement has, and 6 for a number beyond a double's range.
///
/// A text in quotes ends at the next quote of its kind that is not doubled. The dollar sign at the end of a function's
/// name (`Left$`) is dropped.
[[nodiscard]] std::vector<Token> tokensOf(const QString& sql);

} // namespace data
