// The hourglass while something takes long.
#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace controls {

// The screen has one pointer, and these do not nest: the default pointer ends every hourglass before it.
inline void showHourglass()
{
    if (QGuiApplication::overrideCursor() == nullptr) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
}

inline void showDefaultPointer()
{
    QGuiApplication::restoreOverrideCursor();
}

/// Shows the hourglass for as long as it lives, also when an exception ends that.
class HourglassPointer
{
public:
    HourglassPointer() { showHourglass(); }
    HourglassPointer(const HourglassPointer&) = delete;
    HourglassPointer& operator=(const HourglassPointer&) = delete;
    ~HourglassPointer() { showDefaultPointer(); }
};

} // namespace controls
