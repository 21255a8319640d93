#include "data/language/sql_lexer.h"

#include "data/language/date_literal.h"
#include "data/language/sql_error.h"

#include <array>
#include <limits>

namespace data {
namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool startsWord(QChar c)
{
    return c.isLetter() || c == u'_' || c.isSurrogate();
}

bool continuesWord(QChar c)
{
    return startsWord(c) || c.isDigit() || c.isMark();
}

class Lexer
{
public:
    explicit Lexer(const QString& sql) : sql_(sql), end_(sql.size())
    {
        while (end_ > 0 && isPadding(sql.at(end_ - 1))) {
            --end_;
        }
    }

    std::vector<Token> run()
    {
        for (skipBlanks(); position_ < end_; skipBlanks()) {
            tokens_.push_back(next());
        }
        Token end;
        end.place = {end_, end_};
        tokens_.push_back(end);
        return std::move(tokens_);
    }

private:
    static bool isPadding(QChar c) { return c.isSpace() || c == u';' || c.isNull(); }

    void skipBlanks()
    {
        while (position_ < end_ && sql_.at(position_).isSpace()) {
            ++position_;
        }
    }

    [[nodiscard]] QChar at(qsizetype position) const { return position < end_ ? sql_.at(position) : QChar(); }

    Token next()
    {
        const qsizetype begin = position_;
        Token token = read(sql_.at(begin));
        token.place = {begin, position_};
        return token;
    }

    Token read(QChar first)
    {
        if (startsWord(first)) {
            return word();
        }
        if (isDigit(first) || (first == u'.' && isDigit(at(position_ + 1)) && !followsName())) {
            return number();
        }
        if (first == u'\'' || first == u'"') {
            return quoted(first);
        }
        if (first == u'[') {
            return enclosed(u']', Token::Kind::Bracketed);
        }
        if (first == u'#') {
            return date();
        }
        return symbol();
    }

    /// Whether the dot at hand stands right behind a name: then it qualifies and starts no number.
    [[nodiscard]] bool followsName() const
    {
        return !tokens_.empty() && tokens_.back().place.end == position_ &&
               (tokens_.back().kind == Token::Kind::Word || tokens_.back().kind == Token::Kind::Bracketed);
    }

    Token word()
    {
        const qsizetype begin = position_;
        while (position_ < end_ && continuesWord(sql_.at(position_))) {
            ++position_;
        }
        Token token;
        token.kind = Token::Kind::Word;
        token.text = sql_.mid(begin, position_ - begin);
        if (at(position_) == u'$') {
            ++position_;
        }
        return token;
    }

    void skipDigits()
    {
        while (position_ < end_ && isDigit(sql_.at(position_))) {
            ++position_;
        }
    }

    Token number()
    {
        const qsizetype begin = position_;
        skipDigits();
        bool whole = true;
        if (at(position_) == u'.') {
            whole = false;
            ++position_;
            skipDigits();
        }
        if (at(position_).toLower() == u'e') {
            const qsizetype sign = at(position_ + 1) == u'+' || at(position_ + 1) == u'-' ? 1 : 0;
            if (isDigit(at(position_ + 1 + sign))) {
                whole = false;
                position_ += 1 + sign;
                skipDigits();
            }
        }
        if (startsWord(at(position_))) {
            throw syntaxError(sql_, begin);
        }
        return numberToken(sql_.mid(begin, position_ - begin), whole);
    }

    static Token numberToken(const QString& text, bool whole)
    {
        Token token;
        token.kind = Token::Kind::Number;
        token.text = text;
        const double number = text.toDouble(); // always with a point, whatever the locale
        if (!(number <= std::numeric_limits<double>::max())) {
            throw runtime::RunTimeError(runtime::ErrorNumber::Overflow);
        }
        if (whole && number <= std::numeric_limits<qint32>::max()) {
            token.value = static_cast<qint32>(number);
        } else {
            token.value = number;
        }
        return token;
    }

    Token quoted(QChar quote)
    {
        const qsizetype begin = position_;
        Token token;
        token.kind = Token::Kind::Text;
        for (++position_; position_ < end_; ++position_) {
            const QChar c = sql_.at(position_);
            if (c.isNull()) {
                break;
            }
            if (c == quote) {
                ++position_;
                if (at(position_) != quote) {
                    return token;
                }
            }
            token.text += c;
        }
        throw expressionError(QStringLiteral("Syntax error in string"), sql_, {begin, sql_.size()});
    }

    /// From the mark at hand to the closing one.
    Token enclosed(QChar closing, Token::Kind kind)
    {
        const qsizetype begin = position_;
        const qsizetype close = sql_.indexOf(closing, begin + 1);
        if (close < 0 || close >= end_) {
            throw syntaxError(sql_, begin);
        }
        Token token;
        token.kind = kind;
        token.text = sql_.mid(begin + 1, close - begin - 1);
        position_ = close + 1;
        if (token.text.trimmed().isEmpty()) {
            throw syntaxError(sql_, begin);
        }
        return token;
    }

    Token date()
    {
        const qsizetype begin = position_;
        Token token = enclosed(u'#', Token::Kind::Date);
        const std::optional<runtime::Date> date = dateOfLiteral(token.text);
        if (!date) {
            throw expressionError(QStringLiteral("Syntax error in date"), sql_, {begin, position_});
        }
        token.value = *date;
        return token;
    }

    Token symbol()
    {
        struct Symbol {
            QStringView written;
            QStringView meant;
        };
        static constexpr std::array<Symbol, 20> kSymbols{{
            {u"<=", u"<="}, {u"=<", u"<="}, {u">=", u">="}, {u"=>", u">="}, {u"<>", u"<>"},
            {u"<", u"<"},   {u">", u">"},   {u"=", u"="},   {u"+", u"+"},   {u"-", u"-"},
            {u"*", u"*"},   {u"/", u"/"},   {u"\\", u"\\"}, {u"^", u"^"},   {u"&", u"&"},
            {u"(", u"("},   {u")", u")"},   {u",", u","},   {u".", u"."},   {u"!", u"."},
        }};
        const QStringView here = QStringView(sql_).mid(position_, end_ - position_);
        for (const Symbol& symbol : kSymbols) {
            if (here.startsWith(symbol.written)) {
                position_ += symbol.written.size();
                Token token;
                token.kind = Token::Kind::Symbol;
                token.text = symbol.meant.toString();
                return token;
            }
        }
        throw syntaxError(sql_, position_);
    }

    const QString& sql_;
    qsizetype end_ = 0;
    qsizetype position_ = 0;
    std::vector<Token> tokens_;
};

} // namespace

std::vector<Token> tokensOf(const QString& sql)
{
    return Lexer(sql).run();
}

} // namespace data
