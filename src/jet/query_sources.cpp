#include "jet/query_sources.h"

#include <algorithm>
#include <stdexcept>

namespace jet {

namespace {

/// Far more than any query designer accepts; what has more is damage and not a query.
constexpr std::size_t kMaximumSources = 255;

std::string lowerCase(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return name;
}

const char* words(QuerySources::Join join)
{
    switch (join) {
    case QuerySources::Join::Inner:
        return " INNER JOIN ";
    case QuerySources::Join::Left:
        return " LEFT JOIN ";
    case QuerySources::Join::Right:
        return " RIGHT JOIN ";
    }
    return "";
}

} // namespace

void QuerySources::add(const std::string& name, std::string sql)
{
    if (nodes_.size() == kMaximumSources) {
        throw std::invalid_argument("has more sources than a query can have");
    }
    names_.push_back(lowerCase(name));
    Node node;
    node.sql = std::move(sql);
    nodes_.push_back(std::move(node));
}

void QuerySources::join(Join join, const std::string& left, const std::string& right, const std::string& condition)
{
    const std::size_t one = find(left);
    const std::size_t other = find(right);
    if (one == other) {
        throw std::invalid_argument("joins \"" + left + "\" to itself");
    }
    const std::size_t top = topOf(one);
    const std::size_t otherTop = topOf(other);
    if (top == otherTop) {
        Node& meeting = nodes_[meetingOf(one, other)];
        if (meeting.join != join) {
            throw std::invalid_argument("joins \"" + left + "\" and \"" + right + "\" in two ways");
        }
        meeting.conditions.push_back(condition);
        return;
    }
    Node node;
    node.join = join;
    node.conditions = {condition};
    node.left = top;
    node.right = otherTop;
    nodes_[top].parent = nodes_.size();
    nodes_[otherTop].parent = nodes_.size();
    nodes_.push_back(std::move(node));
}

std::string QuerySources::sql() const
{
    std::string result;
    std::vector<std::size_t> done;
    for (std::size_t source = 0; source < names_.size(); ++source) {
        const std::size_t top = topOf(source);
        if (std::find(done.begin(), done.end(), top) == done.end()) {
            result += (result.empty() ? "" : ", ") + written(top, true);
            done.push_back(top);
        }
    }
    return result;
}

std::size_t QuerySources::find(const std::string& name) const
{
    const auto found = std::find(names_.begin(), names_.end(), lowerCase(name));
    if (found == names_.end()) {
        throw std::invalid_argument("joins \"" + name + "\", which is not one of its sources");
    }
    return static_cast<std::size_t>(found - names_.begin());
}

std::size_t QuerySources::topOf(std::size_t node) const
{
    while (nodes_[node].parent) {
        node = *nodes_[node].parent;
    }
    return node;
}

/// The lowest join that has both below it.
std::size_t QuerySources::meetingOf(std::size_t one, std::size_t other) const
{
    std::vector<std::size_t> above;
    for (std::optional<std::size_t> node = one; node; node = nodes_[*node].parent) {
        above.push_back(*node);
    }
    while (std::find(above.begin(), above.end(), other) == above.end()) {
        other = *nodes_[other].parent;
    }
    return other;
}

std::string QuerySources::written(std::size_t index, bool outermost) const
{
    const Node& node = nodes_[index];
    if (node.conditions.empty()) {
        return node.sql;
    }
    std::string result = written(node.left, false) + words(node.join) + written(node.right, false) + " ON ";
    if (node.conditions.size() == 1) {
        result += node.conditions.front();
    } else {
        for (std::size_t i = 0; i < node.conditions.size(); ++i) {
            result += (i == 0 ? "(" : " AND (") + node.conditions[i] + ")";
        }
    }
    return outermost ? result : "(" + result + ")";
}

} // namespace jet
