// A statement in Jet's dialect as a tree.
#pragma once

#include "data/language/sql_lexer.h"

#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace data {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;
struct Query;
using QueryPtr = std::unique_ptr<Query>;

// --- Expressions -------------------------------------------------------------------------------------------------

struct Literal {
    runtime::Value value;
};

struct ColumnName {
    QString source; ///< the table, query or alias that stands before the dot; empty where there is none
    QString name;
};

struct Negation {
    ExpressionPtr operand;
};

struct NotCondition {
    ExpressionPtr operand;
};

enum class BinaryOperator {
    Power,
    Multiply,
    Divide,
    WholeDivide,
    Modulo,
    Add,
    Subtract,
    Concatenate,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Like,
    And,
    Or,
    Xor,
    Eqv,
    Imp,
};

struct Binary {
    BinaryOperator op = BinaryOperator::Add;
    ExpressionPtr left;
    ExpressionPtr right;
};

struct Between {
    ExpressionPtr value;
    ExpressionPtr low;
    ExpressionPtr high;
    bool negated = false;
};

struct InList {
    ExpressionPtr value;
    std::vector<ExpressionPtr> list;
    bool negated = false;
};

struct InQuery {
    ExpressionPtr value;
    QueryPtr query;
    bool negated = false;
};

struct IsNull {
    ExpressionPtr value;
    bool negated = false;
};

struct Exists {
    QueryPtr query;
};

/// A query in parentheses that stands for the one value it yields.
struct ScalarQuery {
    QueryPtr query;
};

struct FunctionCall {
    QString name;
    std::vector<ExpressionPtr> arguments;
    bool star = false; ///< Count(*)
};

struct Expression {
    using Node = std::variant<Literal, ColumnName, Negation, NotCondition, Binary, Between, InList, InQuery, IsNull,
                              Exists, ScalarQuery, FunctionCall>;
    Node node;
    TextRange place;
};

// --- Queries -----------------------------------------------------------------------------------------------------

struct OutputItem {
    ExpressionPtr expression; ///< null: all columns (of `source`, where that is named)
    QString source;
    QString alias; ///< empty where none is given
    TextRange place;
};

struct OrderItem {
    ExpressionPtr expression;
    bool descending = false;
};

struct Top {
    double count = 0;
    bool percent = false;
};

struct FromItem;
using FromItemPtr = std::unique_ptr<FromItem>;

struct NamedSource {
    QString name;
    QString alias;
};

struct DerivedSource {
    QueryPtr query;
    QString alias;
};

struct Join {
    enum class Kind { Inner, Left, Right };
    Kind kind = Kind::Inner;
    FromItemPtr left;
    FromItemPtr right;
    ExpressionPtr condition;
};

struct FromItem {
    std::variant<NamedSource, DerivedSource, Join> node;
    TextRange place;
};

struct Select {
    bool distinct = false;
    bool distinctRow = false;
    std::optional<Top> top;
    std::vector<OutputItem> items;
    std::vector<FromItemPtr> from;
    ExpressionPtr where;
    std::vector<ExpressionPtr> groupBy;
    ExpressionPtr having;
};

/// One select, or a union of several, in order.
struct Query {
    struct Part {
        Select select;
        bool all = false; ///< joined to the parts before it by UNION ALL
    };
    std::vector<Part> parts;
    std::vector<OrderItem> orderBy;
    TextRange place;
};

struct Delete {
    std::vector<QString> targets; ///< the tables named before FROM, as `Meals.*` or by a column of theirs
    std::vector<FromItemPtr> from;
    ExpressionPtr where;
};

struct Statement {
    std::variant<Query, Delete> node;
};

} // namespace data
