#include "data/engine/snapshot.h"

#include <bit>

namespace data {
namespace {

enum Kind : quint8 { kNull, kBoolean, kWhole, kNumber, kDate, kText, kBytes };
static_assert(std::variant_size_v<runtime::Value> == kBytes + 1);

/// A place in a run: the beginning in the upper bits, so many units long in the lower ones.
constexpr int kLengthBits = 28;
constexpr quint64 kLengthMask = (quint64{1} << kLengthBits) - 1;

quint64 placeOf(std::size_t begin, qsizetype length)
{
    if (static_cast<quint64>(length) > kLengthMask) {
        throw std::bad_alloc();
    }
    return (quint64{begin} << kLengthBits) | static_cast<quint64>(length);
}

} // namespace

void Snapshot::put(quint8 kind, quint64 cell)
{
    kinds_.push_back(kind);
    cells_.push_back(cell);
}

void Snapshot::append(qint32 value)
{
    put(kWhole, std::bit_cast<quint32>(value));
}

void Snapshot::append(double value)
{
    put(kNumber, std::bit_cast<quint64>(value));
}

void Snapshot::append(runtime::Date value)
{
    put(kDate, std::bit_cast<quint64>(value.days));
}

void Snapshot::append(QStringView value)
{
    const quint64 place = placeOf(texts_.size(), value.size());
    texts_.append(value.utf16(), static_cast<std::size_t>(value.size()));
    put(kText, place);
}

void Snapshot::append(const runtime::Value& value)
{
    switch (value.index()) {
    case kBoolean:
        return put(kBoolean, std::get<bool>(value) ? 1 : 0);
    case kWhole:
        return append(std::get<qint32>(value));
    case kNumber:
        return append(std::get<double>(value));
    case kDate:
        return append(std::get<runtime::Date>(value));
    case kText:
        return append(QStringView(std::get<QString>(value)));
    case kBytes: {
        const QByteArray& bytes = std::get<QByteArray>(value);
        const quint64 place = placeOf(static_cast<std::size_t>(bytes_.size()), bytes.size());
        bytes_.append(bytes);
        return put(kBytes, place);
    }
    default:
        return put(kNull, 0);
    }
}

void Snapshot::arrange(const std::vector<qsizetype>& rows)
{
    std::deque<quint8> kinds;
    std::deque<quint64> cells;
    for (const qsizetype row : rows) {
        const auto first = row * static_cast<qsizetype>(columns_);
        const auto last = first + static_cast<qsizetype>(columns_);
        kinds.insert(kinds.end(), kinds_.begin() + first, kinds_.begin() + last);
        cells.insert(cells.end(), cells_.begin() + first, cells_.begin() + last);
    }
    kinds_ = std::move(kinds);
    cells_ = std::move(cells);
}

qsizetype Snapshot::rowCount() const
{
    return columns_ == 0 ? 0 : static_cast<qsizetype>(cells_.size() / columns_);
}

runtime::Value Snapshot::value(qsizetype row, int column) const
{
    const std::size_t index = static_cast<std::size_t>(row) * columns_ + static_cast<std::size_t>(column);
    const quint64 cell = cells_[index];
    const auto begin = static_cast<std::size_t>(cell >> kLengthBits);
    const auto length = static_cast<qsizetype>(cell & kLengthMask);
    switch (kinds_[index]) {
    case kBoolean:
        return cell != 0;
    case kWhole:
        return std::bit_cast<qint32>(static_cast<quint32>(cell));
    case kNumber:
        return std::bit_cast<double>(cell);
    case kDate:
        return runtime::Date{std::bit_cast<double>(cell)};
    case kText:
        return QString::fromUtf16(texts_.data() + begin, length);
    case kBytes:
        return bytes_.mid(static_cast<qsizetype>(begin), length);
    default:
        return runtime::Null{};
    }
}

} // namespace data
