#include "data/language/sql_parser.h"

#include "data/language/expression_parser.h"

#include <array>

namespace data {
namespace {

/// More parts in a union or nested joins than a person writes.
constexpr std::size_t kMostParts = 50;

class QueryParser final : public ExpressionParser
{
public:
    explicit QueryParser(TokenReader& tokens) : ExpressionParser(tokens) {}

    Statement statement()
    {
        Statement result;
        if (tokens().takeWord(u"delete")) {
            result.node = deleteStatement();
        } else if (tokens().peek().isWord(u"select") || tokens().peek().isSymbol(u"(")) {
            result.node = query();
        } else {
            throw unknownStatement();
        }
        if (tokens().peek().kind != Token::Kind::End) {
            throw tokens().errorHere();
        }
        return result;
    }

private:
    QueryPtr subquery() override
    {
        auto result = std::make_unique<Query>(query());
        tokens().expectSymbol(u")");
        return result;
    }

    runtime::RunTimeError unknownStatement()
    {
        static constexpr std::array<QStringView, 9> kOthers{
            u"insert", u"update", u"create", u"alter", u"drop", u"parameters", u"transform", u"execute", u"procedure"};
        const runtime::RunTimeError error = tokens().errorHere();
        for (const QStringView word : kOthers) {
            if (tokens().peek().isWord(word)) {
                return error.withHint(
                    QStringLiteral("This program knows statements that select or delete records, no %1 statement.")
                        .arg(word.toString().toUpper()));
            }
        }
        return error;
    }

    // --- Queries ---

    Query query()
    {
        const Deeper deeper(*this);
        const qsizetype begin = tokens().begin();
        Query result;
        result.parts.push_back({unionPart(), false});
        while (tokens().takeWord(u"union")) {
            if (result.parts.size() == kMostParts) {
                throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex);
            }
            const bool all = tokens().takeWord(u"all");
            result.parts.push_back({unionPart(), all});
        }
        if (tokens().takeWord(u"order")) {
            tokens().expectWord(u"by");
            result.orderBy = orderItems();
        }
        takeOwnerAccessOption();
        result.place = tokens().since(begin);
        return result;
    }

    /// Saved queries may end in it; who owns what makes no difference here.
    void takeOwnerAccessOption()
    {
        if (tokens().peek().isWord(u"with") && tokens().peek(1).isWord(u"owneraccess")) {
            tokens().take();
            tokens().take();
            tokens().expectWord(u"option");
        }
    }

    Select unionPart()
    {
        if (tokens().takeSymbol(u"(")) {
            const Deeper deeper(*this);
            Select result = unionPart();
            tokens().expectSymbol(u")");
            return result;
        }
        return select();
    }

    Select select()
    {
        tokens().expectWord(u"select");
        Select result;
        selectOptions(result);
        do {
            result.items.push_back(outputItem());
        } while (tokens().takeSymbol(u","));
        if (tokens().takeWord(u"from")) {
            result.from = fromItems();
        }
        if (tokens().takeWord(u"where")) {
            result.where = expression();
        }
        if (tokens().takeWord(u"group")) {
            tokens().expectWord(u"by");
            result.groupBy = expressions();
        }
        if (tokens().takeWord(u"having")) {
            result.having = expression();
        }
        return result;
    }

    void selectOptions(Select& select)
    {
        if (tokens().takeWord(u"distinct")) {
            select.distinct = true;
        } else if (tokens().takeWord(u"distinctrow")) {
            select.distinctRow = true;
        } else if (tokens().peek().isWord(u"all") && !tokens().peek(1).isSymbol(u",")) {
            tokens().take();
        }
        select.top = top();
    }

    std::optional<Top> top()
    {
        if (!tokens().peek().isWord(u"top") || tokens().peek(1).kind != Token::Kind::Number) {
            return std::nullopt;
        }
        tokens().take();
        const runtime::Value count = tokens().take().value;
        const bool percent = tokens().takeWord(u"percent");
        if (const qint32* whole = std::get_if<qint32>(&count)) {
            return Top{static_cast<double>(*whole), percent};
        }
        if (!percent) {
            throw tokens().errorHere();
        }
        return Top{std::get<double>(count), percent};
    }

    OutputItem outputItem()
    {
        const qsizetype begin = tokens().begin();
        OutputItem item;
        if (tokens().takeSymbol(u"*")) {
            item.place = tokens().since(begin);
            return item;
        }
        if (atName() && tokens().peek(1).isSymbol(u".") && tokens().peek(2).isSymbol(u"*")) {
            item.source = name();
            tokens().take();
            tokens().take();
            item.place = tokens().since(begin);
            return item;
        }
        item.expression = expression();
        item.place = tokens().since(begin);
        if (tokens().takeWord(u"as")) {
            item.alias = anyName();
        }
        return item;
    }

    /// A name in a place where only a name can stand, so that every word will do.
    QString anyName()
    {
        const Token& token = tokens().peek();
        if (token.kind != Token::Kind::Word && token.kind != Token::Kind::Bracketed) {
            throw tokens().errorHere();
        }
        return tokens().take().text;
    }

    std::vector<OrderItem> orderItems()
    {
        std::vector<OrderItem> result;
        do {
            OrderItem item;
            item.expression = expression();
            item.descending = tokens().takeWord(u"desc");
            if (!item.descending) {
                tokens().takeWord(u"asc");
            }
            result.push_back(std::move(item));
        } while (tokens().takeSymbol(u","));
        return result;
    }

    // --- Sources ---

    std::vector<FromItemPtr> fromItems()
    {
        std::vector<FromItemPtr> result;
        do {
            result.push_back(joined());
        } while (tokens().takeSymbol(u","));
        return result;
    }

    FromItemPtr joined()
    {
        const Deeper deeper(*this);
        const qsizetype begin = tokens().begin();
        FromItemPtr left = source();
        for (std::size_t count = 1; tokens().isWordOf({u"inner", u"left", u"right", u"join"}); ++count) {
            if (count == kMostParts) {
                throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex);
            }
            Join join;
            join.kind = joinKind();
            join.left = std::move(left);
            join.right = source();
            tokens().expectWord(u"on");
            join.condition = expression();
            left = std::make_unique<FromItem>();
            left->node = std::move(join);
            left->place = tokens().since(begin);
        }
        return left;
    }

    Join::Kind joinKind()
    {
        Join::Kind kind = Join::Kind::Inner;
        if (tokens().takeWord(u"left")) {
            kind = Join::Kind::Left;
            tokens().takeWord(u"outer");
        } else if (tokens().takeWord(u"right")) {
            kind = Join::Kind::Right;
            tokens().takeWord(u"outer");
        } else {
            tokens().takeWord(u"inner");
        }
        tokens().expectWord(u"join");
        return kind;
    }

    FromItemPtr source()
    {
        const qsizetype begin = tokens().begin();
        auto result = std::make_unique<FromItem>();
        if (tokens().takeSymbol(u"(")) {
            if (!atSubquery()) {
                FromItemPtr inner = joined();
                tokens().expectSymbol(u")");
                return inner;
            }
            DerivedSource derived{subquery(), {}};
            derived.alias = alias();
            result->node = std::move(derived);
        } else {
            NamedSource named{name(), {}};
            named.alias = alias();
            result->node = std::move(named);
        }
        result->place = tokens().since(begin);
        return result;
    }

    QString alias()
    {
        if (tokens().takeWord(u"as")) {
            return anyName();
        }
        return atName() && !tokens().isWordOf({u"with"}) ? name() : QString();
    }

    // --- Delete ---

    Delete deleteStatement()
    {
        Delete result;
        while (!tokens().peek().isWord(u"from")) {
            if (!tokens().takeSymbol(u"*")) {
                result.targets.push_back(deleteTarget());
            }
            if (!tokens().takeSymbol(u",")) {
                break;
            }
        }
        tokens().expectWord(u"from");
        result.from = fromItems();
        if (tokens().takeWord(u"where")) {
            result.where = expression();
        }
        takeOwnerAccessOption();
        return result;
    }

    /// `Meals.*` or `Meals.MealNo`; a column without its table names no target.
    QString deleteTarget()
    {
        QString first = name();
        if (!tokens().takeSymbol(u".")) {
            return {};
        }
        if (!tokens().takeSymbol(u"*")) {
            static_cast<void>(anyName());
        }
        return first;
    }
};

} // namespace

Statement parseStatement(const QString& sql)
{
    TokenReader tokens(sql);
    return QueryParser(tokens).statement();
}

} // namespace data
