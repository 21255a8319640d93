#include "data/engine/row_sorter.h"

#include "jet/format/text_key.h"

#include <algorithm>
#include <numeric>

namespace data {
namespace {

std::u16string_view viewOf(QStringView text)
{
    return {text.utf16(), static_cast<std::size_t>(text.size())};
}

} // namespace

void RowSorter::add(const ResultRow& row)
{
    for (const RowOrder& term : order_) {
        if (const std::optional<double> number = row.numberForSql(term.column)) {
            addKey(Kind::Number, *number);
        } else {
            addOther(row.value(term.column));
        }
    }
    ++rows_;
}

void RowSorter::addKey(Kind kind, double number)
{
    kinds_.push_back(kind);
    numbers_.push_back(number);
}

void RowSorter::addOther(const runtime::Value& key)
{
    if (const auto* text = std::get_if<QString>(&key)) {
        addKey(Kind::Text, static_cast<double>(texts_.size()));
        texts_.append(*text);
    } else if (const auto* bytes = std::get_if<QByteArray>(&key)) {
        addKey(Kind::Bytes, static_cast<double>(bytes_.size()));
        bytes_.append(*bytes);
    } else {
        addKey(Kind::Null, 0);
    }
}

int RowSorter::compared(std::size_t a, std::size_t b) const
{
    if (kinds_[a] != kinds_[b]) {
        return kinds_[a] < kinds_[b] ? -1 : 1;
    }
    const double left = numbers_[a];
    const double right = numbers_[b];
    switch (kinds_[a]) {
    case Kind::Number:
        return left < right ? -1 : left > right ? 1 : 0;
    case Kind::Text:
        return jet::compareTexts(viewOf(texts_[static_cast<qsizetype>(left)]),
                                 viewOf(texts_[static_cast<qsizetype>(right)]));
    case Kind::Bytes:
        return bytes_[static_cast<qsizetype>(left)].compare(bytes_[static_cast<qsizetype>(right)]);
    case Kind::Null:
        break;
    }
    return 0;
}

bool RowSorter::isBefore(qsizetype row, qsizetype other) const
{
    const std::size_t terms = order_.size();
    for (std::size_t i = 0; i < terms; ++i) {
        const int order =
            compared(static_cast<std::size_t>(row) * terms + i, static_cast<std::size_t>(other) * terms + i);
        if (order != 0) {
            return order_[i].descending ? order > 0 : order < 0;
        }
    }
    return false;
}

std::vector<qsizetype> RowSorter::sorted() const
{
    const auto before = [this](qsizetype row, qsizetype other) { return isBefore(row, other); };
    std::vector<qsizetype> places(static_cast<std::size_t>(rows_));
    std::iota(places.begin(), places.end(), 0);
    if (std::is_sorted(places.begin(), places.end(), before)) {
        return {};
    }
    std::stable_sort(places.begin(), places.end(), before);
    return places;
}

} // namespace data
