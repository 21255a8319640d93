// Walks the tokens of an SQL text.
#pragma once

#include "data/language/sql_error.h"

#include <initializer_list>
#include <utility>

namespace data {

/// The text must live as long as the reader.
class TokenReader
{
public:
    explicit TokenReader(const QString& sql) : sql_(sql), tokens_(tokensOf(sql)) {}

    [[nodiscard]] const QString& sql() const { return sql_; }
    /// The token at hand or one behind it; End when there is none.
    [[nodiscard]] const Token& peek(std::size_t ahead = 0) const
    {
        const std::size_t index = position_ + ahead;
        return index < tokens_.size() ? tokens_[index] : tokens_.back();
    }
    /// The token at hand, which it passes unless it is End.
    const Token& take()
    {
        const Token& token = peek();
        if (token.kind != Token::Kind::End) {
            ++position_;
        }
        return token;
    }

    // take...: passes that token where it is the one at hand. expect...: error 3075 where it is not.
    bool takeWord(QStringView word)
    {
        if (!peek().isWord(word)) {
            return false;
        }
        take();
        return true;
    }
    bool takeSymbol(QStringView symbol)
    {
        if (!peek().isSymbol(symbol)) {
            return false;
        }
        take();
        return true;
    }
    void expectWord(QStringView word)
    {
        if (!takeWord(word)) {
            throw errorHere();
        }
    }
    void expectSymbol(QStringView symbol)
    {
        if (!takeSymbol(symbol)) {
            throw errorHere();
        }
    }
    /// Whether the token at hand is one of these words of the language.
    [[nodiscard]] bool isWordOf(std::initializer_list<QStringView> words) const
    {
        for (const QStringView word : words) {
            if (peek().isWord(word)) {
                return true;
            }
        }
        return false;
    }

    /// Where the token at hand stands.
    [[nodiscard]] qsizetype begin() const { return peek().place.begin; }
    /// From a place to the end of the token taken last.
    [[nodiscard]] TextRange since(qsizetype begin) const
    {
        return {begin, position_ == 0 ? begin : tokens_[position_ - 1].place.end};
    }
    [[nodiscard]] runtime::RunTimeError errorHere() const { return syntaxError(sql_, begin()); }

private:
    const QString& sql_;
    std::vector<Token> tokens_;
    std::size_t position_ = 0;
};

} // namespace data
