// A diary and what reports say of it, written by hand in a file of the folder golden.
#pragma once

#include "support/diary_content.h"

#include "reports/date_filter.h"

#include <QLocale>
#include <QString>

#include <string>
#include <vector>

namespace reports {

/// What the file holds, line by line; empty lines and those that begin with # are for the reader:
///
///     locale de_DE                                      the locale in force; C when there is none
///     filter 04/03/2002 to 06/03/2002                   the date filter; none is in force when there is none
///     reading 05/03/2002 08:15 | 5.2 | Meal | comment   in the order of entry; the comment may be left out
///     food BREAD,WHITE | 250 | 50 | 4 | 8               kCal, carbohydrate, fat and protein of 100 g; - is not known
///     meal 05/03/2002 08:15 | Breakfast | 6 | 120 BREAD,WHITE | 10.5 BUTTER
///                                                       its dose and foods, each with its grams; - is no type, no dose
///     report daily                                      by its name; it begins with an empty list
///     then daily                                        a report in the same window; its lines stand below those above
///     > Date / Time\tMeal                               a line of the list, \t being a tab and \s a blank at the end
///     1> Mmol\tWhen                                     one with a style code
///     error 3021                                        what the report ends with, when it does not come to its end
struct GoldenDiary {
    struct Reading {
        QString when;
        double mmol = 0;
        int type = 0;
        QString comment; ///< null without one
    };
    struct Report {
        QString name;
        std::vector<std::string> lines; ///< each with "STYLE>" before it when the style is not 0
        int error = 0;
        bool continues = false; ///< in the window of the one before; its lines are the list's from the beginning
    };

    QLocale locale = QLocale::c();
    DateFilter filter;
    std::vector<Reading> readings;
    std::vector<FoodRow> foods; ///< numbered from 1
    std::vector<MealRow> meals;
    std::vector<Report> reports;
};

/// Throws std::runtime_error, naming the line that makes no sense.
[[nodiscard]] GoldenDiary readGoldenDiary(const QString& path);

} // namespace reports
