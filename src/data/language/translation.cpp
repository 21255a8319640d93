#include "data/language/translation.h"

namespace data {

QString TranslationState::parameter(const runtime::Value& value)
{
    std::size_t index = 0;
    while (index < parameters.size() && parameters[index] != value) {
        ++index;
    }
    if (index == parameters.size()) {
        parameters.push_back(value);
    }
    return u'?' + QString::number(index + 1);
}

} // namespace data
