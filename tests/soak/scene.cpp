#include "soak/scene.h"

namespace soak {

namespace {

constexpr Minute kDay = 24 * 60;
constexpr Minute kFirstDay = 46000 * kDay;
constexpr int kDays = 60;
constexpr std::size_t kConnections = 3;

} // namespace

data::Database& Scene::connection()
{
    if (connections.size() < kConnections)
        return connections.emplace_back(path);
    data::Database& kept = connections[static_cast<std::size_t>(dice.below(kConnections))];
    if (dice.oneIn(20))
        kept = data::Database(path);
    return kept;
}

Minute Scene::moment()
{
    if (!expected.readings.empty() && dice.oneIn(10))
        return expected.readings.at(dice.keyOf(expected.readings)).time;
    const Minute day = kFirstDay + dice.below(kDays) * kDay;
    return dice.oneIn(15) ? day : day + dice.below(static_cast<int>(kDay));
}

double Scene::level()
{
    static const std::vector<int> thresholds{0, 39, 40, 41, 79, 80, 81, 1000};
    return (dice.oneIn(5) ? dice.oneOf(thresholds) : dice.between(10, 250)) / 10.0;
}

QString Scene::comment()
{
    static const std::vector<QString> comments{
        {},
        {},
        QStringLiteral("before lunch"),
        QStringLiteral("a 'quoted' \"text\", with commas"),
        QStringLiteral("après-ski in Łódź, 20 °C"),
        QString::fromUtf8("日記 ☕"),
        QString(50, u'x'),
        QString(50, u'ж'),
    };
    return dice.oneOf(comments);
}

void require(bool holds, const std::string& what)
{
    if (!holds)
        throw Difference(what);
}

int errorOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const runtime::RunTimeError& error) {
        return error.number();
    }
    return 0;
}

void requireError(runtime::ErrorNumber number, const std::function<void()>& call)
{
    const int error = errorOf(call);
    require(error == static_cast<int>(number), "run-time error " + std::to_string(static_cast<int>(number)) +
                                                   " was expected, and there was " + std::to_string(error));
}

QString tenths(double value)
{
    return QString::number(value, 'f', 1);
}

} // namespace soak
