// The grammar of expressions.
#pragma once

#include "data/language/sql_ast.h"
#include "data/language/token_reader.h"

namespace data {

/// Reads expressions from the tokens; subqueries are read by the parser of queries that derives from it.
class ExpressionParser
{
public:
    explicit ExpressionParser(TokenReader& tokens) : tokens_(tokens) {}
    ExpressionParser(const ExpressionParser&) = delete;
    ExpressionParser& operator=(const ExpressionParser&) = delete;

    [[nodiscard]] ExpressionPtr expression();

protected:
    ~ExpressionParser() = default;
    [[nodiscard]] virtual QueryPtr subquery() = 0;

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
    struct Level;
    ExpressionPtr binaryLevel(std::size_t level);
    ExpressionPtr notLevel();
    ExpressionPtr comparison();
    ExpressionPtr comparisonTail(ExpressionPtr left, qsizetype begin);
    ExpressionPtr inTail(ExpressionPtr value, bool negated, qsizetype begin);
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
