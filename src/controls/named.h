// Names of controls, by which users' documents and tests know them.
#pragma once

#include <QLatin1String>

namespace controls {

/// The same control with this as its object's name.
template <typename Control>
Control* named(const char* name, Control* control)
{
    control->setObjectName(QLatin1String(name));
    return control;
}

} // namespace controls
