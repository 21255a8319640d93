#include "jet/names.h"

#include "jet/disk/error.h"
#include "jet/format/text_key.h"
#include "jet/format/utf.h"

#include <algorithm>

namespace jet {

void checkName(const std::string& name, const std::string& what)
{
    constexpr std::size_t kLongestName = 64;
    constexpr std::u16string_view kForbidden = u".![]`";
    const std::u16string characters = toUtf16(name);
    const bool good = !characters.empty() && characters.size() <= kLongestName && characters.front() != u' ' &&
                      std::none_of(characters.begin(), characters.end(), [kForbidden](char16_t character) {
                          return character < u' ' || kForbidden.find(character) != std::u16string_view::npos;
                      });
    if (!good) {
        throw Error(ErrorCode::InvalidArgument, "\"" + name + "\" cannot be the name of " + what);
    }
}

bool sameName(const std::string& a, const std::string& b)
{
    return textsEqual(toUtf16(a), toUtf16(b));
}

} // namespace jet
