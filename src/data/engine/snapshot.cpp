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

void Snapshot::append(const runtime::Value& value)
{
    quint64 cell = 0;
    switch (value.index()) {
    case kBoolean:
        cell = std::get<bool>(value) ? 1 : 0;
        break;
    case kWhole:
        cell = std::bit_cast<quint32>(std::get<qint32>(value));
        break;
    case kNumber:
        cell = std::bit_cast<quint64>(std::get<double>(value));
        break;
    case kDate:
        cell = std::bit_cast<quint64>(std::get<runtime::Date>(value).days);
        break;
    case kText: {
        const QString& text = std::get<QString>(value);
        cell = placeOf(texts_.size(), text.size());
        texts_.append(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size()));
        break;
    }
    case kBytes: {
        const QByteArray& bytes = std::get<QByteArray>(value);
        cell = placeOf(static_cast<std::size_t>(bytes_.size()), bytes.size());
        bytes_.append(bytes);
        break;
    }
    default:
        break;
    }
    kinds_.push_back(static_cast<quint8>(value.index()));
    cells_.push_back(cell);
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
