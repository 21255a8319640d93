// Texts of the user's as they reach a statement: whatever they hold, they are searched for or refused.
#include "data/support/small_diary.h"

namespace data::test {
namespace {

class TypedText : public SmallDiary
{
protected:
    /// The foods whose name the pattern fits.
    [[nodiscard]] QString foodsLike(const QString& pattern) const
    {
        return rows(
            QStringLiteral("select NDB_No from NutritionalInformation where Shrt_Desc like \"%1\"").arg(pattern));
    }
};

TEST_F(TypedText, OfTenThousandCharactersIsFoundInNoFood)
{
    EXPECT_EQ(foodsLike(u'*' + QString(10000, u'x') + u'*'), QString());
    EXPECT_EQ(foodsLike(QStringLiteral("*a").repeated(5000)), QString());
    EXPECT_EQ(foodsLike(QString(10000, u'*')), QStringLiteral("1001 | 1002 | 1003 | 2000"));
}

TEST_F(TypedText, WithAListThatIsNotClosedIsAnInvalidPattern)
{
    EXPECT_EQ(errorOf(QStringLiteral("select * from NutritionalInformation where Shrt_Desc like '*[*'")), 93);
}

TEST_F(TypedText, OfControlCharactersIsSearchedForOrRefused)
{
    EXPECT_EQ(foodsLike(QStringLiteral("*\u0001\t\n*")), QString());
    EXPECT_EQ(errorOf(QStringLiteral("select * from Meals where MealNo like '1") + QChar(0) + QStringLiteral("'")),
              3075);
    EXPECT_EQ(errorOf(QStringLiteral("select * from Meals where MealNo = 1") + QChar(0) + QStringLiteral(" or True")),
              3075)
        << "never the statement up to there";
}

TEST_F(TypedText, IsHeldAgainstEachPatternOfItsStatement)
{
    EXPECT_EQ(
        rows(QStringLiteral("select NDB_No from NutritionalInformation where Shrt_Desc like '*milk*' or Shrt_Desc "
                            "like 'br*' or Shrt_Desc like '?orridge'")),
        QStringLiteral("1002 | 1003 | 2000"));
    EXPECT_EQ(rows(QStringLiteral("select NDB_No from NutritionalInformation where 'bread' like Shrt_Desc")),
              QStringLiteral("1003"))
        << "a pattern that is another in each row";
}

TEST_F(TypedText, WithAQuoteOfItsOwnKindEndsThereAndIsASyntaxError)
{
    EXPECT_EQ(errorOf(QStringLiteral("select * from NutritionalInformation where Shrt_Desc like '*it's*'")), 3075);
    EXPECT_EQ(errorOf(QStringLiteral("select * from Meals where MealTime > Cdate('1/3/2002' or 1=1')")), 3075);
}

} // namespace
} // namespace data::test
