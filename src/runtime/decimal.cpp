#include "runtime/decimal.h"

#include <array>
#include <charconv>
#include <cmath>

namespace runtime {
namespace {

constexpr int kSignificantDigits = 15;

} // namespace

Decimal::Decimal(double value) : negative_(std::signbit(value))
{
    std::array<char, 32> text{}; // d.dddddddddddddde-308
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                          std::chars_format::scientific, kSignificantDigits - 1)
                                .ptr;
    const char* const fraction = text.data() + 2;
    const char* const mark = fraction + kSignificantDigits - 1;
    const char* const power = mark[1] == '+' ? mark + 2 : mark + 1; // from_chars takes no plus sign
    int scientificExponent = 0;
    std::from_chars(power, end, scientificExponent);

    digits_.push_back(text[0]);
    digits_.append(fraction, mark);
    exponent_ = scientificExponent + 1;
    dropTrailingZeros();
}

void Decimal::timesTenToThe(int power)
{
    if (!isZero()) {
        exponent_ += power;
    }
}

void Decimal::round(int places)
{
    const int kept = exponent_ + places;
    if (isZero() || kept >= static_cast<int>(digits_.size())) {
        return;
    }
    if (kept < 0) {
        digits_.clear();
        dropTrailingZeros();
        return;
    }
    const bool up = digits_[static_cast<std::size_t>(kept)] >= '5';
    digits_.resize(static_cast<std::size_t>(kept));
    if (up) {
        while (!digits_.empty() && digits_.back() == '9') {
            digits_.pop_back();
        }
        if (digits_.empty()) {
            digits_ = "1";
            ++exponent_;
        } else {
            ++digits_.back();
        }
    }
    dropTrailingZeros();
}

std::string Decimal::wholeDigits() const
{
    if (exponent_ <= 0) {
        return {};
    }
    std::string whole = digits_.substr(0, static_cast<std::size_t>(exponent_));
    whole.resize(static_cast<std::size_t>(exponent_), '0');
    return whole;
}

std::string Decimal::fractionDigits() const
{
    if (exponent_ < 0) {
        return std::string(static_cast<std::size_t>(-exponent_), '0') + digits_;
    }
    return static_cast<std::size_t>(exponent_) < digits_.size() ? digits_.substr(static_cast<std::size_t>(exponent_))
                                                                : std::string();
}

void Decimal::dropTrailingZeros()
{
    while (!digits_.empty() && digits_.back() == '0') {
        digits_.pop_back();
    }
    if (digits_.empty()) {
        exponent_ = 0;
    }
}

} // namespace runtime
