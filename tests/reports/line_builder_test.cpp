#include "reports/line_builder.h"

#include <gtest/gtest.h>

namespace reports {
namespace {

TEST(LineBuilder, PutsALineTogetherColumnByColumn)
{
    const QLocale english(QLocale::English, QLocale::UnitedKingdom);
    const runtime::NumberPattern oneDecimal(QStringLiteral("#0.0"), english);
    const runtime::DatePattern time(QStringLiteral("hh:mm"), english);
    ReportList list;
    LineBuilder line(list);
    line.tab().add(u"Butter").add(u", salted").tab().add(5.25, oneDecimal);
    line.tab().add(runtime::Value(runtime::Null{}), oneDecimal).tab().add(runtime::Date{0.5}, time);
    line.finish(Bold);
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list.at(0).text.toStdString(), "\tButter, salted\t5.3\t\t12:00");
    EXPECT_EQ(list.at(0).style, Bold);
}

TEST(LineBuilder, EachLineStandsForItself)
{
    ReportList list;
    LineBuilder line(list);
    line.add(u"the first one, which is long").finish();
    line.add(u"second").finish(Green);
    line.finish();
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list.at(0).text.toStdString(), "the first one, which is long");
    EXPECT_EQ(list.at(0).style, Plain);
    EXPECT_EQ(list.at(1).text.toStdString(), "second");
    EXPECT_EQ(list.at(2).text.toStdString(), "");
}

} // namespace
} // namespace reports
