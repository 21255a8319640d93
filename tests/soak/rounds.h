// How often a test does what it does by chance.
#pragma once

#include <QtGlobal>

namespace soak {

/// QUILLON_TEST_ROUNDS, or so many as every run affords.
inline int roundsOr(int usual)
{
    return qEnvironmentVariableIsSet("QUILLON_TEST_ROUNDS") ? qEnvironmentVariableIntValue("QUILLON_TEST_ROUNDS")
                                                            : usual;
}

/// QUILLON_TEST_SEED, or 1.
inline quint64 seedInForce()
{
    return qEnvironmentVariableIsSet("QUILLON_TEST_SEED") ? qgetenv("QUILLON_TEST_SEED").toULongLong() : 1;
}

} // namespace soak
