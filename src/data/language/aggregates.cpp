#include "data/language/aggregates.h"

#include "data/language/expression_walk.h"

#include <algorithm>
#include <array>

namespace data {

ExpressionType Aggregate::resultType(ExpressionType argument) const
{
    switch (result) {
    case Result::Count:
        return typeOf(FieldType::Long);
    case Result::Sum:
        return typeOf(argument.is(FieldType::Currency) ? FieldType::Currency : FieldType::Double);
    case Result::LikeArgument:
        return argument;
    case Result::Number:
        break;
    }
    return typeOf(FieldType::Double);
}

const Aggregate* aggregateNamed(QStringView name)
{
    using Result = Aggregate::Result;
    static constexpr std::array<Aggregate, 11> kAggregates{{
        {u"count", u"count", Result::Count, false},
        {u"sum", u"sum", Result::Sum, true},
        {u"avg", u"avg", Result::Sum, true},
        {u"min", u"min", Result::LikeArgument, false},
        {u"max", u"max", Result::LikeArgument, false},
        {u"first", u"agg_first", Result::LikeArgument, false},
        {u"last", u"agg_last", Result::LikeArgument, false},
        {u"stdev", u"agg_stdev", Result::Number, true},
        {u"stdevp", u"agg_stdevp", Result::Number, true},
        {u"var", u"agg_var", Result::Number, true},
        {u"varp", u"agg_varp", Result::Number, true},
    }};
    const auto* const found = std::find_if(kAggregates.begin(), kAggregates.end(), [&](const Aggregate& candidate) {
        return candidate.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == kAggregates.end() ? nullptr : found;
}

bool containsAggregate(const Expression& expression)
{
    const auto* call = std::get_if<FunctionCall>(&expression.node);
    bool found = call != nullptr && aggregateNamed(call->name) != nullptr;
    forEachPart(expression, [&](const Expression& part) { found = found || containsAggregate(part); });
    return found;
}

} // namespace data
