// soak [--seed S] [--operations N] [--seconds N] [--compare-every N]: random actions on a diary of its own. Ends with 1
// at the first difference between the diary and what it must hold, and says how to see it again.
#include "soak/soak.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocale>

#include <iostream>
#include <limits>

namespace {

constexpr long kTellEvery = 10000;

struct Bounds {
    quint64 seed = 1;
    long operations = 1000;
    qint64 seconds = std::numeric_limits<qint64>::max();
    long compareEvery = 100;
};

Bounds boundsFrom(const QCoreApplication& program)
{
    QCommandLineParser parser;
    const auto option = [&](const char* name, const char* description) {
        const QString text = QString::fromLatin1(name);
        parser.addOption({text, QString::fromLatin1(description), text});
    };
    option("seed", "The same seed does the same.");
    option("operations", "So many actions; 1000 unless seconds are given.");
    option("seconds", "For so long.");
    option("compare-every", "Compare the whole content after so many actions; 100 unless given.");
    parser.addHelpOption();
    parser.process(program);

    Bounds bounds;
    const auto number = [&](const char* name) { return parser.value(QString::fromLatin1(name)).toLongLong(); };
    const auto isSet = [&](const char* name) { return parser.isSet(QString::fromLatin1(name)); };
    if (isSet("seed"))
        bounds.seed = parser.value(QStringLiteral("seed")).toULongLong();
    if (isSet("seconds")) {
        bounds.seconds = number("seconds");
        bounds.operations = std::numeric_limits<long>::max();
    }
    if (isSet("operations"))
        bounds.operations = number("operations");
    if (isSet("compare-every"))
        bounds.compareEvery = std::max(1LL, number("compare-every"));
    return bounds;
}

void report(const soak::Soak& soak)
{
    std::cout << soak.steps() << " operations without a difference; at most " << soak.mostReadings() << " readings and "
              << soak.mostMeals() << " meals at once"
              << (soak.isExported() ? "" : "; mdb-export is not installed and was skipped") << '\n';
    for (const auto& [name, count] : soak.done())
        std::cout << "  " << count << "  " << name << '\n';
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const QCoreApplication program(argumentCount, arguments);
    QLocale::setDefault(QLocale::c());
    const Bounds bounds = boundsFrom(program);
    QElapsedTimer clock;
    clock.start();
    soak::Soak soak(bounds.seed);
    try {
        while (soak.steps() < bounds.operations && clock.elapsed() / 1000 < bounds.seconds) {
            soak.step();
            if (soak.steps() % bounds.compareEvery == 0)
                soak.compare();
            if (soak.steps() % kTellEvery == 0)
                std::cerr << soak.steps() << " operations\n";
        }
        soak.compare();
    } catch (const std::exception& difference) {
        std::cout << difference.what() << "\nSee it again: soak --seed " << bounds.seed << " --operations "
                  << soak.steps() << " --compare-every 1\n";
        return 1;
    }
    report(soak);
    return 0;
}
