// A diary whose food table holds a few foods with figures that are easy to reckon with.
#pragma once

#include <QString>
#include <QTemporaryDir>

class KnownFoods
{
public:
    KnownFoods();

    [[nodiscard]] const QString& path() const { return path_; }

    // Per 100 g: g carbohydrate, g fat, g protein, kCal, mg cholesterol.
    static constexpr int kButter = 1001;  ///< 0.06, 81.11, 0.85, 717, 215
    static constexpr int kRice = 2001;    ///< 20, 1, 2, 100, not known
    static constexpr int kCookies = 3001; ///< 50, 10, 6, 300, 5
    static constexpr int kWater = 4001;   ///< 0, 0, 0, 0, not known
    static constexpr int kUnknown = 5001; ///< nothing is known
    static constexpr int kEggs = 6001;    ///< 0, 10, 13, 150, 400

private:
    QTemporaryDir folder_;
    QString path_;
};

/// A diary whose foods have these descriptions, in this order and with the numbers 1, 2, 3 ...
class DescribedFoods
{
public:
    explicit DescribedFoods(const QStringList& descriptions);

    [[nodiscard]] const QString& path() const { return path_; }

private:
    QTemporaryDir folder_;
    QString path_;
};
