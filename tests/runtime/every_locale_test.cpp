// What the program shows in a field must be taken back from it, wherever the user lives.

#include "runtime/calendar.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/locale_in_force.h"

#include <gtest/gtest.h>

namespace runtime {
namespace {

QList<QLocale> everyLocale()
{
    return QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
}

TEST(EveryLocale, TakesBackTheDatesThatItShows)
{
    for (const QLocale& locale : everyLocale()) {
        const LocaleInForce inForce(locale);
        for (int month = 1; month <= 12; ++month) {
            const Date date = dateFromParts({2002, month, 5, 8, 15, 0}).value();
            for (const char* pattern : {"dd/mm/yyyy hh:mm", "dd/mmm/yyyy hh:mm", "dd mmmm yyyy hh:mm"}) {
                const QString text = format(date, QString::fromLatin1(pattern));
                ASSERT_TRUE(isDate(text)) << locale.name().toStdString() << ": " << text.toStdString();
                ASSERT_EQ(toDate(text), date) << locale.name().toStdString() << ": " << text.toStdString();
            }
        }
    }
}

TEST(EveryLocale, TakesBackTheNumbersThatItShows)
{
    for (const QLocale& locale : everyLocale()) {
        const LocaleInForce inForce(locale);
        for (const double number : {5.6, -12.3, 1234.5, 1234567.5, 0.0}) {
            for (const char* pattern : {"#0.0", "00.0", "#,##0.0", ""}) {
                const QString text = format(number, QString::fromLatin1(pattern));
                ASSERT_TRUE(isNumeric(text)) << locale.name().toStdString() << ": " << text.toStdString();
                ASSERT_EQ(toDouble(text), number) << locale.name().toStdString() << ": " << text.toStdString();
            }
        }
    }
}

} // namespace
} // namespace runtime
