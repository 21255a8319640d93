// The hourglass while something takes long.
#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace controls {

/// Shows the hourglass for as long as it lives, also when an exception ends that.
class HourglassPointer
{
public:
    HourglassPointer() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    HourglassPointer(const HourglassPointer&) = delete;
    HourglassPointer& operator=(const HourglassPointer&) = delete;
    ~HourglassPointer() { QGuiApplication::restoreOverrideCursor(); }
};

} // namespace controls
