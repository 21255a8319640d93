#include "data/language/expression_walk.h"

namespace data {
namespace {

class Visit
{
public:
    explicit Visit(const std::function<void(const Expression&)>& visitor) : visitor_(visitor) {}

    void operator()(const Literal&) const {}
    void operator()(const ColumnName&) const {}
    void operator()(const Exists&) const {}
    void operator()(const ScalarQuery&) const {}
    void operator()(const Negation& node) const { visitor_(*node.operand); }
    void operator()(const NotCondition& node) const { visitor_(*node.operand); }
    void operator()(const InQuery& node) const { visitor_(*node.value); }
    void operator()(const IsNull& node) const { visitor_(*node.value); }
    void operator()(const Binary& node) const
    {
        visitor_(*node.left);
        visitor_(*node.right);
    }
    void operator()(const Between& node) const
    {
        visitor_(*node.value);
        visitor_(*node.low);
        visitor_(*node.high);
    }
    void operator()(const InList& node) const
    {
        visitor_(*node.value);
        all(node.list);
    }
    void operator()(const FunctionCall& node) const { all(node.arguments); }

private:
    void all(const std::vector<ExpressionPtr>& expressions) const
    {
        for (const ExpressionPtr& expression : expressions) {
            visitor_(*expression);
        }
    }

    const std::function<void(const Expression&)>& visitor_;
};

} // namespace

void forEachPart(const Expression& expression, const std::function<void(const Expression&)>& visitor)
{
    std::visit(Visit(visitor), expression.node);
}

} // namespace data
