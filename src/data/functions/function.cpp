#include "data/functions/function.h"

#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <QHash>
#include <QString>

#include <algorithm>
#include <vector>

namespace data {

runtime::Value call(const Function& function, Arguments arguments)
{
    if (function.nulls != Nulls::Own && std::any_of(arguments.begin(), arguments.end(), runtime::isNull)) {
        if (function.nulls == Nulls::Refuse) {
            throw runtime::RunTimeError(runtime::ErrorNumber::InvalidUseOfNull);
        }
        return runtime::Null{};
    }
    return function.evaluate(arguments);
}

std::span<const Function* const> allFunctions()
{
    static const std::vector<const Function*> functions = [] {
        std::vector<const Function*> result;
        for (const std::span<const Function> family :
             {dateFunctions(), textFunctions(), numberFunctions(), conversionFunctions()}) {
            for (const Function& function : family) {
                result.push_back(&function);
            }
        }
        return result;
    }();
    return functions;
}

const Function* functionNamed(QStringView name)
{
    static const QHash<QString, const Function*> byName = [] {
        QHash<QString, const Function*> result;
        for (const Function* function : allFunctions()) {
            result.insert(function->name.toString(), function);
        }
        return result;
    }();
    return byName.value(name.toString().toLower(), nullptr);
}

void refuseArgument()
{
    throw runtime::RunTimeError(runtime::ErrorNumber::InvalidProcedureCall);
}

qint32 countOf(const runtime::Value& value, qint32 least)
{
    const qint32 count = runtime::toLong(value);
    if (count < least) {
        refuseArgument();
    }
    return count;
}

} // namespace data
