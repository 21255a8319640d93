// A number as the decimal digits that a reader sees: what patterns round and what plain text shows.
#pragma once

#include <string>

namespace runtime {

/// A finite number's first 15 significant digits. A double carries no more for sure, and rounding on them does what a
/// reader expects: 2.675 is stored a little below, and still rounds to 2.68.
class Decimal
{
public:
    explicit Decimal(double value); ///< precondition: finite

    void timesTenToThe(int power);
    /// To that many digits after the point, half away from zero.
    void round(int places);

    [[nodiscard]] bool isZero() const { return digits_.empty(); }
    [[nodiscard]] bool isNegative() const { return negative_ && !isZero(); }
    /// The value is 0.d1d2d3... times ten to the power of this; 0 for zero.
    [[nodiscard]] int exponent() const { return exponent_; }
    [[nodiscard]] const std::string& digits() const { return digits_; } ///< no zeros at either end
    [[nodiscard]] std::string wholeDigits() const;                      ///< before the point; "" below 1
    [[nodiscard]] std::string fractionDigits() const;                   ///< after the point, no zeros at the end

private:
    void dropTrailingZeros();

    bool negative_ = false;
    std::string digits_;
    int exponent_ = 0;
};

} // namespace runtime
