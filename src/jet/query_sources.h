// The FROM part of a saved query: tables and queries, joined as its join rows say.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace jet {

/// Collects sources and joins in the order of their rows. The functions throw std::invalid_argument with words that
/// go on from "The saved query ...".
class QuerySources
{
public:
    enum class Join { Inner, Left, Right };

    /// `name` is what joins call the source by (its alias if it has one), `sql` how the FROM part writes it.
    void add(const std::string& name, std::string sql);
    /// Joins what holds the one source with what holds the other. When one join holds both already, the condition is a
    /// further one of that join.
    void join(Join join, const std::string& left, const std::string& right, const std::string& condition);
    /// All of it, sources that no join connects with commas between.
    [[nodiscard]] std::string sql() const;

private:
    /// A source of its own, or a join of two earlier nodes.
    struct Node {
        std::string sql; // of a source of its own
        Join join = Join::Inner;
        std::vector<std::string> conditions; // of a join, at least one
        std::size_t left = 0;
        std::size_t right = 0;
        std::optional<std::size_t> parent;
    };

    [[nodiscard]] std::size_t find(const std::string& name) const;
    [[nodiscard]] std::size_t topOf(std::size_t node) const;
    [[nodiscard]] std::size_t meetingOf(std::size_t one, std::size_t other) const;
    [[nodiscard]] std::string written(std::size_t node, bool outermost) const;

    std::vector<std::string> names_; // in small letters; the node of the same index is that source
    std::vector<Node> nodes_;        // the sources, then the joins
};

} // namespace jet
