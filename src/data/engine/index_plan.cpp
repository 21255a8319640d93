#include "data/engine/index_plan.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace data {
namespace {

// Reading a row through an index costs a search for its page, which a walk over the table does not need.
constexpr double kRowThroughIndex = 2;
constexpr double kSearch = 4;
// Where nothing is known of the values, a range with two ends is taken to hold a fiftieth of the rows and one with a
// single end a fifth.
constexpr double kShareOfRange = 0.02;
constexpr double kShareOfOpenRange = 0.2;

double sortingCost(double rows)
{
    return rows * std::log2(rows + 2) * 0.5;
}

class Candidate
{
public:
    Candidate(const PlanQuestion& question, const SearchableIndex& index) : question_(question), index_(index) {}

    std::optional<IndexPlan> plan()
    {
        takeConstraints();
        const bool allConstrained = equal_ + (hasRange() ? 1 : 0) == index_.keys.size();
        if (index_.ignoresNulls && !allConstrained) {
            return std::nullopt; // rows without a key are not in it
        }
        plan_.number = static_cast<int>(index_.realIndex) + 1;
        if (keepsOrder(false)) {
            plan_.ordered = true;
        } else if (keepsOrder(true)) {
            plan_.ordered = true;
            plan_.number |= IndexPlan::kBackwards;
        }
        if (plan_.values.empty() && !plan_.ordered) {
            return std::nullopt;
        }
        estimate();
        return plan_;
    }

private:
    const PlanQuestion::Constraint* constraintOn(int column, PlanQuestion::Comparison comparison) const
    {
        const auto found = std::find_if(question_.constraints.begin(), question_.constraints.end(),
                                        [&](const PlanQuestion::Constraint& candidate) {
                                            return candidate.column == column && candidate.comparison == comparison;
                                        });
        return found == question_.constraints.end() ? nullptr : &*found;
    }

    bool take(int column, PlanQuestion::Comparison comparison, char code)
    {
        const PlanQuestion::Constraint* constraint = constraintOn(column, comparison);
        if (constraint == nullptr) {
            return false;
        }
        plan_.values += code;
        plan_.constraints.push_back(constraint->number);
        return true;
    }

    void takeConstraints()
    {
        while (equal_ < index_.keys.size() && take(index_.keys[equal_].column, PlanQuestion::Comparison::Equal, '=')) {
            ++equal_;
        }
        if (equal_ < index_.keys.size()) {
            const int column = index_.keys[equal_].column;
            hasLower_ = take(column, PlanQuestion::Comparison::Lower, '>');
            hasUpper_ = take(column, PlanQuestion::Comparison::Upper, '<');
        }
    }

    [[nodiscard]] bool hasRange() const { return hasLower_ || hasUpper_; }

    [[nodiscard]] bool isFixed(int column) const
    {
        return std::any_of(index_.keys.begin(), index_.keys.begin() + static_cast<std::ptrdiff_t>(equal_),
                           [&](const SearchableIndex::Key& key) { return key.column == column; });
    }

    /// Whether the rows of the range come in the order asked for. Rows with equal keys come in the order of entry, and
    /// the other way round when it is walked backwards.
    [[nodiscard]] bool keepsOrder(bool backwards) const
    {
        if (question_.order.empty() || !index_.keepsOrder) {
            return false;
        }
        std::size_t next = equal_;
        for (const PlanQuestion::Order& term : question_.order) {
            if (term.column == question_.addressColumn) {
                const bool oneRowAKey = index_.unique && index_.required;
                return next == index_.keys.size() && (oneRowAKey || term.descending == backwards);
            }
            if (isFixed(term.column)) {
                continue;
            }
            if (next == index_.keys.size() || index_.keys[next].column != term.column ||
                (index_.keys[next].ascending == term.descending) != backwards) {
                return false;
            }
            ++next;
        }
        return true;
    }

    void estimate()
    {
        double rows = std::max(question_.rowCount, 1.0);
        if (equal_ == index_.keys.size()) {
            rows = index_.unique ? 1 : std::min(rows, index_.rowsPerKey);
        } else {
            for (std::size_t i = 0; i < equal_; ++i) {
                rows = std::max(rows / 10, 1.0);
            }
            if (hasLower_ && hasUpper_) {
                rows *= kShareOfRange;
            } else if (hasRange()) {
                rows *= kShareOfOpenRange;
            }
        }
        plan_.rows = std::max(rows, 1.0);
        plan_.cost = kSearch + plan_.rows * kRowThroughIndex;
    }

    const PlanQuestion& question_;
    const SearchableIndex& index_;
    IndexPlan plan_;
    std::size_t equal_ = 0;
    bool hasLower_ = false;
    bool hasUpper_ = false;
};

IndexPlan walk(const PlanQuestion& question)
{
    IndexPlan plan;
    plan.rows = std::max(question.rowCount, 1.0);
    plan.cost = plan.rows + kSearch;
    plan.ordered = !question.order.empty() && question.order.front().column == question.addressColumn &&
                   !question.order.front().descending;
    return plan;
}

} // namespace

IndexPlan bestPlan(const PlanQuestion& question, const std::vector<SearchableIndex>& indexes)
{
    const auto whole = [&](const IndexPlan& plan) {
        return plan.cost + (plan.ordered || question.order.empty() ? 0 : sortingCost(plan.rows));
    };
    IndexPlan best = walk(question);
    for (const SearchableIndex& index : indexes) {
        const std::optional<IndexPlan> plan = Candidate(question, index).plan();
        if (plan && whole(*plan) < whole(best)) {
            best = *plan;
        }
    }
    return best;
}

} // namespace data
