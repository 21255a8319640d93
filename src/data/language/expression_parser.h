// The grammar of expressions.
#pragma once

#include "data/language/sql_ast.h"
#include "data/language/token_reader.h"

namespace data {

/// Reads expressions from the tokens; subqueries are read by the parser of queries that derives from it. A function
/// named after an operator or a rank reads what binds at least as tightly.
class ExpressionParser
{
public:
    explicit ExpressionParser(TokenReader& tokens) : tokens_(tokens) {}
    ExpressionParser(const ExpressionParser&) = delete;
    ExpressionParser& operator=(const ExpressionParser&) = delete;

    [[nodiscard]] ExpressionPtr expression();

protected:
    ~ExpressionParser() = default;
    /// Reads a query behind an opening bracket, and the closing one.
    [[nodiscard]] virtual QueryPtr subquery() = 0;

    /// One expression, or several with commas between them.
    [[nodiscard]] std::vector<ExpressionPtr> expressions();

    /// A name of a table, a column or an alias, in brackets or not.
    [[nodiscard]] QString name();
    /// Whether the token at hand can be a name where a name may stand.
    [[nodiscard]] bool atName() const;
    [[nodiscard]] bool atSubquery() const;
    [[nodiscard]] TokenReader& tokens() { return tokens_; }

    /// Keeps the tree shallow enough for everything that walks it by recursion; 3360 for an expression that is deeper.
    class Deeper
    {
    public:
        explicit Deeper(ExpressionParser& parser);
        Deeper(const Deeper&) = delete;
        Deeper& operator=(const Deeper&) = delete;
        ~Deeper() { --parser_.depth_; }

    private:
        ExpressionParser& parser_;
    };

private:
    /// Operands with operators of one rank between them, grouped from the left.
    template <typename Operators, typename Operand>
    ExpressionPtr chain(const Operators& operators, Operand operand);
    ExpressionPtr logical(std::size_t rank);
    ExpressionPtr notCondition();
    ExpressionPtr comparison();
    ExpressionPtr comparisonTail(ExpressionPtr left, qsizetype begin);
    ExpressionPtr inTail(ExpressionPtr value, bool negated, qsizetype begin);
    ExpressionPtr arithmetic(std::size_t rank = 0);
    ExpressionPtr sign();
    ExpressionPtr power();
    ExpressionPtr primary();
    ExpressionPtr parenthesised();
    ExpressionPtr nameOrCall();
    ExpressionPtr call(const QString& function, qsizetype begin);
    ExpressionPtr make(Expression::Node node, qsizetype begin) const;

    TokenReader& tokens_;
    int depth_ = 0;
};

} // namespace data
