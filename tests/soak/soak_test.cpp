// The soak itself: it finds a fault, and a seed always does the same.
#include "soak/soak.h"

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace soak {

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

constexpr int kSteps = 40;

void run(Soak& soak, int steps)
{
    for (int step = 0; step < steps; ++step)
        soak.step();
}

/// Changes one byte of the file, in the middle of the text, which the file holds once or more.
void damageText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray bytes = file.readAll();
    const qsizetype at = bytes.indexOf(text);
    ASSERT_GE(at, 0);
    ASSERT_TRUE(file.seek(at + text.size() / 2));
    ASSERT_TRUE(file.putChar('#'));
}

void damageByte(const QString& path, qint64 at)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(at));
    char byte = 0;
    ASSERT_TRUE(file.getChar(&byte));
    ASSERT_TRUE(file.seek(at));
    ASSERT_TRUE(file.putChar(static_cast<char>(byte ^ 1)));
}

TEST(Soak, ASeedAlwaysDoesTheSame)
{
    Soak first(7);
    Soak second(7);
    run(first, kSteps);
    run(second, kSteps);
    EXPECT_EQ(linesOf(first.expected()), linesOf(second.expected()));
    EXPECT_EQ(first.done(), second.done());
    EXPECT_FALSE(first.expected().readings.empty());
    EXPECT_FALSE(first.expected().portions.empty());
}

TEST(Soak, OtherSeedsDoSomethingElse)
{
    Soak first(7);
    Soak second(8);
    run(first, kSteps);
    run(second, kSteps);
    EXPECT_NE(linesOf(first.expected()), linesOf(second.expected()));
}

TEST(Soak, AWrongQuantityIsFoundAndNamed)
{
    Soak soak(7);
    run(soak, kSteps);
    Portion& portion = soak.expected().portions.begin()->second.front();
    portion.grams += 0.1;
    EXPECT_THAT([&] { soak.compare(); }, ThrowsMessage<Difference>(HasSubstr("expected  portion | ")));
}

TEST(Soak, ALostReadingIsFoundAndNamed)
{
    Soak soak(7);
    run(soak, kSteps);
    soak.expected().readings.emplace(9999, Reading{5.5, 0, 1, {}});
    EXPECT_THAT([&] { soak.compare(); }, ThrowsMessage<Difference>(HasSubstr("expected  reading | 9999")));
}

TEST(Soak, AWrongReadingIsFoundByTheActionsThemselves)
{
    Soak soak(7);
    run(soak, kSteps);
    soak.expected().readings.begin()->second.type = 8;
    soak.expected().readings.begin()->second.comment = QStringLiteral("never typed");
    EXPECT_THROW(run(soak, 400), Difference);
}

TEST(Soak, AFlippedByteOfATextIsFound)
{
    Soak soak(7);
    run(soak, kSteps);
    damageText(soak.path(), "ORANGE JUICE");
    EXPECT_THROW(soak.compare(), Difference);
}

TEST(Soak, AFlippedByteOfAPagesHeaderIsFound)
{
    constexpr qint64 kPage = 4096;
    Soak soak(7);
    run(soak, kSteps);
    damageByte(soak.path(), QFileInfo(soak.path()).size() - kPage); // the kind of the last page
    EXPECT_THROW(
        {
            soak.step();
            soak.compare();
        },
        Difference);
}

} // namespace

} // namespace soak
