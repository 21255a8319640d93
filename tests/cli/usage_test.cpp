#include "cli/command.h"
#include "cli/quillonctl.h"

#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

TEST(Usage, HelpListsEveryCommand)
{
    for (const char* word : {"--help", "-h", "help"}) {
        const Outcome outcome = quillonctl({QString::fromLatin1(word)});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        for (const char* command : {"create FILE", "check FILE", "tables FILE", "queries FILE", "dump FILE NAME",
                                    "sql FILE TEXT", "report FILE NAME[,NAME...]", "print FILE NAME[,NAME...]"}) {
            EXPECT_THAT(outcome.out, HasSubstr(command));
        }
    }
}

TEST(Usage, EachCommandHasAHelpOfItsOwn)
{
    for (const cli::Command& command : cli::allCommands()) {
        const Outcome outcome = quillonctl({command.name, QStringLiteral("--help")});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(
            outcome.out,
            HasSubstr(
                ("Usage: quillonctl " + command.name + u' ' + command.arguments.constFirst().name).toStdString()));
        for (const QCommandLineOption& option : command.options) {
            EXPECT_THAT(outcome.out, HasSubstr("--" + option.names().constFirst().toStdString()));
        }
    }
}

TEST(Usage, VersionIsOneLine)
{
    const Outcome outcome = quillonctl({QStringLiteral("--version")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, testing::MatchesRegex("quillonctl [0-9.]+\n"));
}

TEST(Usage, AnArgumentThatIsNoTextIsRefusedAndNeverTakenForAnother)
{
    QProcess shell; // a QString cannot hold the argument
    shell.start(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("\"$0\" check \"$(printf 'a\\377.mdb')\""), QStringLiteral(QUILLONCTL)});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 2);
    EXPECT_EQ(shell.readAllStandardError().toStdString(), "quillonctl: An argument is no valid UTF-8.\n");
}

TEST(Usage, TheManualTellsEveryCommandAndOption)
{
    QFile file(QStringLiteral(QUILLONCTL_MANUAL));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string manual = file.readAll().toStdString();
    for (const cli::Command& command : cli::allCommands()) {
        EXPECT_THAT(manual, HasSubstr("\n.Cm " + command.name.toStdString() + "\n"));
        EXPECT_THAT(manual, HasSubstr("\n.It Cm " + command.name.toStdString() + "\n"));
        for (const QCommandLineOption& option : command.options) {
            EXPECT_THAT(manual, HasSubstr("Fl -" + option.names().constFirst().toStdString()));
        }
    }
}

struct WrongUse {
    const char* name;
    QStringList arguments;
    const char* message;
};

void PrintTo(const WrongUse& use, std::ostream* stream)
{
    *stream << use.arguments.join(u' ').toStdString();
}

class WrongUsage : public testing::TestWithParam<WrongUse>
{
};

TEST_P(WrongUsage, IsToldOnStandardErrorWithStatusTwo)
{
    const Outcome outcome = quillonctl(GetParam().arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, testing::StartsWith("quillonctl: "));
    EXPECT_THAT(outcome.err, HasSubstr(GetParam().message));
    EXPECT_THAT(outcome.err, testing::EndsWith("Try 'quillonctl --help'.\n"));
}

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

INSTANTIATE_TEST_SUITE_P(
    Quillonctl, WrongUsage,
    testing::Values(
        WrongUse{"NoCommand", {}, "A command is missing."},
        WrongUse{"UnknownCommand", words("insert x.mdb"), "There is no command 'insert'."},
        WrongUse{"UnknownOption", words("tables x.mdb --all"), "'all'"},
        WrongUse{"OptionOfAnotherCommand", words("tables x.mdb --styles"), "'styles'"},
        WrongUse{"NoFile", words("tables"), "Usage: quillonctl tables FILE"},
        WrongUse{"EmptyFileName", {QStringLiteral("tables"), QString()}, "Usage: quillonctl tables FILE"},
        WrongUse{"TooManyArguments", words("check x.mdb y.mdb"), "Usage: quillonctl check FILE"},
        WrongUse{"NoNameToDump", words("dump x.mdb"), "Usage: quillonctl dump FILE NAME"},
        WrongUse{"NoStatement", words("sql x.mdb"), "Usage: quillonctl sql FILE TEXT"},
        WrongUse{"SampleWithoutNumber", words("create x.mdb --sample"), "sample"},
        WrongUse{"SampleThatIsNoNumber", words("create x.mdb --sample many"), "--sample takes a number of days"},
        WrongUse{"SampleOfNoDays", words("create x.mdb --sample 0"), "--sample takes a number of days"},
        WrongUse{"SampleBeforeTheBeginning", words("create x.mdb --sample=-3"), "--sample takes a number of days"},
        WrongUse{"FoodsAndNoFoods", words("create x.mdb --foods a.csv --no-foods"), "exclude each other"},
        WrongUse{"FoodsWithoutName", words("create x.mdb --foods="), "--foods takes"},
        WrongUse{"UnknownReport", words("report x.mdb monthly"),
                 "There is no report 'monthly'. The reports are: basic"},
        WrongUse{"OneUnknownReportOfTwo", words("report x.mdb basic,Basic"), "There is no report 'Basic'."},
        WrongUse{"EmptyReportName", words("report x.mdb basic,"), "There is no report ''."},
        WrongUse{"PrintIntoNoFile", words("print x.mdb basic"), "--pdf takes the name of the file to write."},
        WrongUse{"PrintIntoAFileWithoutName", words("print x.mdb basic --pdf="), "--pdf takes"},
        WrongUse{"PrintOfAnUnknownReport", words("print x.mdb monthly --pdf x.pdf"), "There is no report 'monthly'."},
        WrongUse{"PrintFromWithoutTo", words("print x.mdb basic --pdf x.pdf --from 01/03/2002"),
                 "--from and --to go together."},
        WrongUse{"FromWithoutTo", words("report x.mdb basic --from 01/03/2002"), "--from and --to go together."},
        WrongUse{"ToWithoutFrom", words("report x.mdb basic --to 01/03/2002"), "--from and --to go together."},
        WrongUse{"FromThatIsNoDate", words("report x.mdb basic --from 31/02/2002 --to 01/03/2002"),
                 "'31/02/2002' is no date"},
        WrongUse{"ToThatHasTheMonthFirst", words("report x.mdb basic --from 01/03/2002 --to 03/31/2002"),
                 "'03/31/2002' is no date"}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace
