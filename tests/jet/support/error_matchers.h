// Matchers for the engine's exception.
#pragma once

#include "jet/disk/error.h"

#include <gmock/gmock.h>
#include <string>

namespace jet::test {

/// EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Locked));
inline auto throwsError(ErrorCode code)
{
    return testing::Throws<Error>(testing::Property(&Error::code, code));
}

/// The same, and the message contains the text.
inline auto throwsError(ErrorCode code, const std::string& text)
{
    return testing::Throws<Error>(testing::AllOf(testing::Property(&Error::code, code),
                                                 testing::Property(&Error::what, testing::HasSubstr(text))));
}

} // namespace jet::test
