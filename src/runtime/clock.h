// The time of day as a dependency, so that tests can set it.
#pragma once

#include "runtime/value.h"

namespace runtime {

class Clock
{
public:
    virtual ~Clock() = default;
    /// Local date and time, to the second.
    [[nodiscard]] virtual Date now() const = 0;
    /// Today at midnight.
    [[nodiscard]] Date today() const;
};

class SystemClock : public Clock
{
public:
    [[nodiscard]] Date now() const override;
};

/// Stands still until it is set.
class FixedClock : public Clock
{
public:
    explicit FixedClock(Date now) : now_(now) {}
    void set(Date now) { now_ = now; }
    [[nodiscard]] Date now() const override { return now_; }

private:
    Date now_;
};

} // namespace runtime
