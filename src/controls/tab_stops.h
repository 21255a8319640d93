// Where the columns of a tab-separated line begin.
#pragma once

#include <QFontMetricsF>
#include <QList>
#include <QString>

namespace controls {

/// Tab stops as a list box keeps them, turned into pixels of one font. One stop alone is repeated at its distance; with
/// several, a tab behind the last of them goes to the next multiple of eight characters, and so do all tabs without any
/// stop.
class TabStops
{
public:
    TabStops() = default;
    /// `dialogUnits` counts quarters of the average character width, from the left edge.
    TabStops(const QList<int>& dialogUnits, double characterWidth);

    /// Where the text after a tab begins when the text before it ends at `x`: always further right.
    [[nodiscard]] double next(double x) const;
    /// Of those that are set. A single one is repeated and so counts as none.
    [[nodiscard]] const QList<double>& places() const { return stops_; }

private:
    QList<double> stops_;
    double distance_ = 1; ///< of the stops beyond those
};

/// The average width of a font's letters, a to z in both cases, by which dialog units are measured.
[[nodiscard]] double averageCharacterWidth(const QFontMetricsF& metrics);

struct Column {
    double x = 0;
    QString text;
};

struct ColumnLayout {
    QList<Column> columns;
    double width = 0; ///< where the last column ends
};

/// No column is cut.
inline constexpr int kNoColumn = -1;

/// Splits a line at its tabs. Line breaks and other control characters of a column show as blanks. In a line with a
/// column for each place, `cutColumn` (counted from 0) ends with "..." where it would reach the next column's place.
[[nodiscard]] ColumnLayout layOutColumns(const QString& line, const TabStops& stops, const QFontMetricsF& metrics,
                                         int cutColumn = kNoColumn);

} // namespace controls
