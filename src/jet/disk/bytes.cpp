#include "jet/disk/bytes.h"

#include <string>

namespace jet {

void throwPastEnd(std::size_t offset, std::size_t length, std::size_t size)
{
    throw Error(ErrorCode::Corrupt, "A structure reaches past its end: " + std::to_string(length) + " bytes at " +
                                        std::to_string(offset) + " of " + std::to_string(size));
}

} // namespace jet
