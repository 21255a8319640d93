// Expressions in Jet's dialect as SQLite's SQL.
#pragma once

#include "data/functions/function.h"
#include "data/language/translation.h"
#include "runtime/run_time_error.h"

namespace data {

class ExpressionTranslator
{
public:
    explicit ExpressionTranslator(TranslationState& state) : state_(state) {}
    ExpressionTranslator(const ExpressionTranslator&) = delete;
    ExpressionTranslator& operator=(const ExpressionTranslator&) = delete;

protected:
    ~ExpressionTranslator() = default;
    [[nodiscard]] virtual Relation subquery(const Query& query, Scope& scope) = 0;

    /// As a value: true is -1.
    [[nodiscard]] TypedSql value(const Expression& expression, Scope& scope);
    /// As a condition: SQLite's truth.
    [[nodiscard]] TypedSql condition(const Expression& expression, Scope& scope);

    [[nodiscard]] TranslationState& state() const { return state_; }

    /// In parentheses where it binds less tightly than needed.
    [[nodiscard]] static QString wrapped(const TypedSql& part, Rank least);
    /// With the collation of texts.
    [[nodiscard]] static QString collated(const TypedSql& part);
    /// As a text, null staying null.
    [[nodiscard]] static TypedSql asText(const TypedSql& part);
    /// As the argument of a function, which sees dates and truth values as what they are.
    [[nodiscard]] static QString argument(const TypedSql& part);
    /// As one of several alternatives that share a type.
    [[nodiscard]] static QString asType(const TypedSql& part, ExpressionType type);

private:
    TypedSql translated(const Expression& expression, Scope& scope);
    TypedSql plain(const Expression& expression, Scope& scope);
    TypedSql literal(const runtime::Value& value);
    TypedSql column(const ColumnName& name, const Expression& expression, Scope& scope);
    TypedSql alias(const OutputItem& item, Scope& scope);
    TypedSql negation(const Negation& negation, Scope& scope);
    TypedSql binary(const Binary& binary, Scope& scope);
    TypedSql arithmetic(const Binary& binary, Scope& scope);
    TypedSql concatenation(const Expression& expression, Scope& scope);
    void flatten(const Expression& expression, Scope& scope, QStringList& operands);
    TypedSql comparison(const QString& symbol, const TypedSql& left, const TypedSql& right);
    TypedSql logical(const Binary& binary, Scope& scope);
    TypedSql between(const Between& between, Scope& scope);
    TypedSql inList(const InList& in, Scope& scope);
    TypedSql inQuery(const InQuery& in, Scope& scope);
    static TypedSql membership(const TypedSql& tested, bool asTexts, bool negated, const QString& candidates);
    TypedSql scalarQuery(const ScalarQuery& scalar, Scope& scope);
    /// A subquery that stands for values: SubqueryOfSeveralFields where it yields more than one column.
    Relation subqueryOfOneColumn(const Query& query, Scope& scope);
    TypedSql function(const FunctionCall& call, const Expression& expression, Scope& scope);
    TypedSql aggregate(const FunctionCall& call, const Expression& expression, Scope& scope);
    std::optional<TypedSql> specialFunction(const FunctionCall& call, const Expression& expression, Scope& scope);
    TypedSql alternatives(const FunctionCall& call, Scope& scope);
    TypedSql choose(const FunctionCall& call, Scope& scope);
    TypedSql switchOf(const FunctionCall& call, Scope& scope);
    TypedSql ordinaryCall(const Function& function, const FunctionCall& call, Scope& scope);
    static TypedSql operatorCall(const Function& function, std::initializer_list<TypedSql> operands);
    static ExpressionType typeOfValue(const runtime::Value& value);
    static void requireComparable(ExpressionType left, ExpressionType right);
    [[nodiscard]] runtime::RunTimeError wrongArguments(const Expression& expression) const;

    TranslationState& state_;
};

} // namespace data
