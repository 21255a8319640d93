#include "data/language/expression_parser.h"

#include <algorithm>
#include <array>
#include <span>

namespace data {
namespace {

/// How deep brackets, functions and subqueries may nest, and how many operands a chain of operators may have.
constexpr int kDeepest = 100;
constexpr int kLongestChain = 500;

struct Operator {
    QStringView text;
    BinaryOperator op;
};

using enum BinaryOperator;
constexpr std::array kImp{Operator{u"imp", Imp}};
constexpr std::array kEqv{Operator{u"eqv", Eqv}};
constexpr std::array kXor{Operator{u"xor", Xor}};
constexpr std::array kOr{Operator{u"or", Or}};
constexpr std::array kAnd{Operator{u"and", And}};
constexpr std::array kConcatenate{Operator{u"&", Concatenate}};
constexpr std::array kSum{Operator{u"+", Add}, Operator{u"-", Subtract}};
constexpr std::array kModulo{Operator{u"mod", Modulo}};
constexpr std::array kWholeDivide{Operator{u"\\", WholeDivide}};
constexpr std::array kProduct{Operator{u"*", Multiply}, Operator{u"/", Divide}};
constexpr std::array kComparison{Operator{u"=", Equal},        Operator{u"<>", NotEqual},
                                 Operator{u"<=", LessOrEqual}, Operator{u">=", GreaterOrEqual},
                                 Operator{u"<", Less},         Operator{u">", Greater}};

/// The ranks of operators from the loosest to the tightest, as far as they are plain chains: those of conditions and
/// those of values. Not and the comparisons stand between And and &; the sign and ^ bind tighter than all of them.
constexpr std::array<std::span<const Operator>, 5> kLogical{kImp, kEqv, kXor, kOr, kAnd};
constexpr std::array<std::span<const Operator>, 5> kArithmetic{kConcatenate, kSum, kModulo, kWholeDivide, kProduct};

const Operator* operatorAt(const Token& token, std::span<const Operator> operators)
{
    const auto found = std::find_if(operators.begin(), operators.end(), [&](const Operator& candidate) {
        return token.isSymbol(candidate.text) || token.isWord(candidate.text);
    });
    return found == operators.end() ? nullptr : &*found;
}

void requireChainOf(int length)
{
    if (length >= kLongestChain) {
        throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex);
    }
}

/// Words that cannot name anything where an expression or a name starts.
bool isReserved(const Token& token)
{
    static constexpr std::array<QStringView, 31> kReserved{
        u"select", u"from",  u"where", u"group", u"having",   u"order",       u"union",  u"inner",
        u"left",   u"right", u"join",  u"on",    u"as",       u"and",         u"or",     u"xor",
        u"eqv",    u"imp",   u"not",   u"mod",   u"like",     u"between",     u"in",     u"is",
        u"null",   u"true",  u"false", u"by",    u"distinct", u"distinctrow", u"exists",
    };
    return std::any_of(kReserved.begin(), kReserved.end(), [&](QStringView word) { return token.isWord(word); });
}

} // namespace

ExpressionParser::Deeper::Deeper(ExpressionParser& parser) : parser_(parser)
{
    if (parser_.depth_ >= kDeepest) {
        throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex);
    }
    ++parser_.depth_;
}

ExpressionPtr ExpressionParser::make(Expression::Node node, qsizetype begin) const
{
    auto expression = std::make_unique<Expression>();
    expression->node = std::move(node);
    expression->place = tokens_.since(begin);
    return expression;
}

ExpressionPtr ExpressionParser::expression()
{
    const Deeper deeper(*this);
    return logical(0);
}

std::vector<ExpressionPtr> ExpressionParser::expressions()
{
    std::vector<ExpressionPtr> result;
    do {
        result.push_back(expression());
    } while (tokens_.takeSymbol(u","));
    return result;
}

template <typename Operators, typename Operand>
ExpressionPtr ExpressionParser::chain(const Operators& operators, Operand operand)
{
    const qsizetype begin = tokens_.begin();
    ExpressionPtr left = operand();
    for (int length = 1; const Operator* found = operatorAt(tokens_.peek(), operators); ++length) {
        requireChainOf(length);
        tokens_.take();
        left = make(Binary{found->op, std::move(left), operand()}, begin);
    }
    return left;
}

ExpressionPtr ExpressionParser::logical(std::size_t rank)
{
    return rank == kLogical.size() ? notCondition() : chain(kLogical[rank], [&] { return logical(rank + 1); });
}

ExpressionPtr ExpressionParser::arithmetic(std::size_t rank)
{
    return rank == kArithmetic.size() ? sign() : chain(kArithmetic[rank], [&] { return arithmetic(rank + 1); });
}

ExpressionPtr ExpressionParser::notCondition()
{
    const qsizetype begin = tokens_.begin();
    if (tokens_.takeWord(u"not")) {
        const Deeper deeper(*this);
        return make(NotCondition{notCondition()}, begin);
    }
    return comparison();
}

ExpressionPtr ExpressionParser::comparison()
{
    const qsizetype begin = tokens_.begin();
    ExpressionPtr left = arithmetic();
    for (int length = 1;; ++length) {
        requireChainOf(length);
        if (const Operator* found = operatorAt(tokens_.peek(), kComparison)) {
            tokens_.take();
            left = make(Binary{found->op, std::move(left), arithmetic()}, begin);
        } else if (tokens_.isWordOf({u"is", u"like", u"between", u"in", u"not"})) {
            left = comparisonTail(std::move(left), begin);
        } else {
            return left;
        }
    }
}

ExpressionPtr ExpressionParser::comparisonTail(ExpressionPtr left, qsizetype begin)
{
    if (tokens_.takeWord(u"is")) {
        const bool negated = tokens_.takeWord(u"not");
        tokens_.expectWord(u"null");
        return make(IsNull{std::move(left), negated}, begin);
    }
    const bool negated = tokens_.takeWord(u"not");
    if (tokens_.takeWord(u"like")) {
        ExpressionPtr like = make(Binary{Like, std::move(left), arithmetic()}, begin);
        return negated ? make(NotCondition{std::move(like)}, begin) : std::move(like);
    }
    if (tokens_.takeWord(u"between")) {
        ExpressionPtr low = arithmetic();
        tokens_.expectWord(u"and");
        ExpressionPtr high = arithmetic();
        return make(Between{std::move(left), std::move(low), std::move(high), negated}, begin);
    }
    tokens_.expectWord(u"in");
    return inTail(std::move(left), negated, begin);
}

ExpressionPtr ExpressionParser::inTail(ExpressionPtr value, bool negated, qsizetype begin)
{
    tokens_.expectSymbol(u"(");
    if (atSubquery()) {
        return make(InQuery{std::move(value), subquery(), negated}, begin);
    }
    InList in{std::move(value), expressions(), negated};
    tokens_.expectSymbol(u")");
    return make(std::move(in), begin);
}

ExpressionPtr ExpressionParser::sign()
{
    const qsizetype begin = tokens_.begin();
    const Deeper deeper(*this);
    if (tokens_.takeSymbol(u"-")) {
        return make(Negation{sign()}, begin);
    }
    if (tokens_.takeSymbol(u"+")) {
        return sign();
    }
    return power();
}

ExpressionPtr ExpressionParser::power()
{
    const qsizetype begin = tokens_.begin();
    ExpressionPtr left = primary();
    for (int length = 1; tokens_.takeSymbol(u"^"); ++length) {
        requireChainOf(length);
        const bool signedExponent = tokens_.peek().isSymbol(u"-") || tokens_.peek().isSymbol(u"+");
        left = make(Binary{Power, std::move(left), signedExponent ? sign() : primary()}, begin);
    }
    return left;
}

ExpressionPtr ExpressionParser::primary()
{
    const Token& token = tokens_.peek();
    const qsizetype begin = tokens_.begin();
    switch (token.kind) {
    case Token::Kind::Number:
    case Token::Kind::Date: {
        const runtime::Value value = tokens_.take().value;
        return make(Literal{value}, begin);
    }
    case Token::Kind::Text: {
        const QString text = tokens_.take().text;
        return make(Literal{text}, begin);
    }
    case Token::Kind::Symbol:
        return parenthesised();
    case Token::Kind::Word:
    case Token::Kind::Bracketed:
        return nameOrCall();
    case Token::Kind::End:
        break;
    }
    throw tokens_.errorHere();
}

ExpressionPtr ExpressionParser::parenthesised()
{
    const qsizetype begin = tokens_.begin();
    tokens_.expectSymbol(u"(");
    if (atSubquery()) {
        return make(ScalarQuery{subquery()}, begin);
    }
    ExpressionPtr inner = expression();
    tokens_.expectSymbol(u")");
    inner->place = tokens_.since(begin);
    return inner;
}

ExpressionPtr ExpressionParser::nameOrCall()
{
    const qsizetype begin = tokens_.begin();
    const bool opensCall = tokens_.peek(1).isSymbol(u"(") && tokens_.peek().kind == Token::Kind::Word;
    if (tokens_.takeWord(u"null")) {
        return make(Literal{runtime::Null{}}, begin);
    }
    if (tokens_.isWordOf({u"true", u"false"})) {
        const bool value = tokens_.take().isWord(u"true");
        return make(Literal{value}, begin);
    }
    if (opensCall && tokens_.takeWord(u"exists")) {
        tokens_.expectSymbol(u"(");
        return make(Exists{subquery()}, begin);
    }
    if (opensCall && (!isReserved(tokens_.peek()) || tokens_.isWordOf({u"left", u"right"}))) {
        const QString function = tokens_.take().text;
        return call(function, begin);
    }
    QString first = name();
    if (!tokens_.takeSymbol(u".")) {
        return make(ColumnName{{}, std::move(first)}, begin);
    }
    const Token& second = tokens_.take();
    if (second.kind != Token::Kind::Word && second.kind != Token::Kind::Bracketed) {
        throw syntaxError(tokens_.sql(), second.place.begin);
    }
    return make(ColumnName{std::move(first), second.text}, begin);
}

ExpressionPtr ExpressionParser::call(const QString& function, qsizetype begin)
{
    FunctionCall result{function, {}, false};
    tokens_.expectSymbol(u"(");
    if (tokens_.takeSymbol(u"*")) {
        result.star = true;
    } else if (!tokens_.peek().isSymbol(u")")) {
        result.arguments = expressions();
    }
    tokens_.expectSymbol(u")");
    return make(std::move(result), begin);
}

QString ExpressionParser::name()
{
    if (!atName()) {
        throw tokens_.errorHere();
    }
    return tokens_.take().text;
}

bool ExpressionParser::atName() const
{
    const Token& token = tokens_.peek();
    return token.kind == Token::Kind::Bracketed || (token.kind == Token::Kind::Word && !isReserved(token));
}

bool ExpressionParser::atSubquery() const
{
    return tokens_.peek().isWord(u"select");
}

} // namespace data
