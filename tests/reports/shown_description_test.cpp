#include "reports/shown_description.h"

#include <gtest/gtest.h>

namespace reports {
namespace {

TEST(ShownDescription, KeepsItsFirstCharacterAndIsInSmallLettersBeyond)
{
    EXPECT_EQ(shownDescription(QStringLiteral("BUTTER,WITH SALT")), QStringLiteral("Butter,with salt"));
    EXPECT_EQ(shownDescription(QStringLiteral("stew")), QStringLiteral("stew")) << "unchanged, not made a capital";
    EXPECT_EQ(shownDescription(QStringLiteral("X")), QStringLiteral("X"));
    EXPECT_EQ(shownDescription(QString()), QString());
    EXPECT_EQ(shownDescription(QStringLiteral("CR\u00c8ME FRA\u00ceCHE")), QStringLiteral("Cr\u00e8me fra\u00eeche"));
}

} // namespace
} // namespace reports
