#include "controls/tab_stops.h"

#include <algorithm>
#include <cmath>

namespace controls {

namespace {

constexpr double kUnitsPerCharacter = 4;
constexpr double kDefaultDistance = 8; // characters

double multipleBehind(double x, double distance)
{
    return (std::floor(x / distance) + 1) * distance;
}

QString withoutControlCharacters(QString text)
{
    std::replace_if(
        text.begin(), text.end(), [](QChar character) { return character < u' '; }, u' ');
    return text;
}

/// Less a blank, so that the next column is told from it; whole where there is no room at all.
QString cutToFit(const QString& text, double room, const QFontMetricsF& metrics)
{
    const double width = room - metrics.horizontalAdvance(u' ');
    return width > 0 ? metrics.elidedText(text, Qt::ElideRight, width) : text;
}

} // namespace

TabStops::TabStops(const QList<int>& dialogUnits, double characterWidth)
{
    const double unit = std::max(characterWidth, 1.0) / kUnitsPerCharacter;
    distance_ = kDefaultDistance * kUnitsPerCharacter * unit;
    if (dialogUnits.size() == 1 && dialogUnits.first() > 0) {
        distance_ = dialogUnits.first() * unit;
        return;
    }
    for (const int stop : dialogUnits) {
        stops_.append(stop * unit);
    }
}

double TabStops::next(double x) const
{
    const auto stop = std::find_if(stops_.begin(), stops_.end(), [x](double candidate) { return candidate > x; });
    return stop != stops_.end() ? *stop : multipleBehind(x, distance_);
}

double averageCharacterWidth(const QFontMetricsF& metrics)
{
    static const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return metrics.horizontalAdvance(letters) / static_cast<double>(letters.size());
}

ColumnLayout layOutColumns(const QString& line, const TabStops& stops, const QFontMetricsF& metrics, int cutColumn)
{
    ColumnLayout layout;
    const QStringList pieces = line.split(u'\t');
    const bool mayCut = pieces.size() == stops.places().size() + 1;
    double x = 0;
    for (const QString& piece : pieces) {
        const qsizetype column = layout.columns.size();
        if (column > 0) {
            x = stops.next(layout.width);
        }
        QString text = withoutControlCharacters(piece);
        if (mayCut && column == cutColumn && column + 1 < pieces.size()) {
            text = cutToFit(text, stops.places().at(column) - x, metrics);
        }
        layout.columns.append({x, text});
        layout.width = x + metrics.horizontalAdvance(layout.columns.last().text);
    }
    return layout;
}

} // namespace controls
