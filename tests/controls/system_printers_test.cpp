// Which printer takes a document: the system's, or a PDF file where there is none. A printer that prints into a file
// stands for the system's.
#include "controls/mock_dialogs.h"
#include "controls/system_printers.h"
#include "printing/pdf_reading.h"
#include "runtime/run_time_error.h"

#include <QDir>
#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

namespace controls {
namespace {

using testing::_;
using testing::Return;

/// An environment variable that gets its old value back.
class Variable
{
public:
    Variable(const char* name, const QString& value) : name_(name), before_(qgetenv(name)), wasSet_(!before_.isNull())
    {
        qputenv(name, value.toUtf8());
    }
    ~Variable() { wasSet_ ? qputenv(name_, before_) : qunsetenv(name_); }

    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    QByteArray before_;
    bool wasSet_;
};

std::shared_ptr<QPrinter> noPrinter()
{
    return nullptr;
}

class SystemPrintersTest : public testing::Test
{
protected:
    /// Stands for the system's printer.
    std::shared_ptr<QPrinter> printerInto(const QString& path)
    {
        auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFileName(path);
        return printer;
    }

    QString pathOf(const char* name) { return home_.filePath(QLatin1String(name)); }

    void writeFile(const QString& path)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("old");
    }

    /// What is printed when the user answers with a path.
    void printInto(const QString& answer)
    {
        EXPECT_CALL(dialogs_, askSavePath).WillOnce(Return(answer));
        const auto printer = SystemPrinters(dialogs_, noPrinter).open(nullptr, QStringLiteral("Report"));
        ASSERT_NE(printer, nullptr);
        printer->print(QStringLiteral("line"));
        printer->endDocument();
    }

    void expectProposal(const QString& path, const QString& documentName)
    {
        EXPECT_CALL(dialogs_, askSavePath(_, _, path, _)).WillOnce(Return(QString()));
        EXPECT_EQ(SystemPrinters(dialogs_, noPrinter).open(nullptr, documentName), nullptr);
    }

    QStringList files() { return QDir(home_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot); }

    QTemporaryDir home_;
    Variable homeFolder_{"HOME", home_.path()};
    Variable configuration_{"XDG_CONFIG_HOME", home_.path()};
    StrictDialogs dialogs_;
};

TEST_F(SystemPrintersTest, WithoutAPrinterThePagesGoIntoAFileThatTheUserNames)
{
    QWidget owner;
    const QString path = pathOf("mine.pdf");
    EXPECT_CALL(dialogs_, askSavePath(&owner, QStringLiteral("There is no printer: save the pages as a PDF file"),
                                      pathOf("Daily Blood Sugar Analysis.pdf"), QStringLiteral("Pages (*.pdf)")))
        .WillOnce(Return(path));
    SystemPrinters printers(dialogs_, noPrinter);
    const auto printer = printers.open(&owner, QStringLiteral("Daily Blood Sugar Analysis"));
    ASSERT_NE(printer, nullptr);
    printer->print(QStringLiteral("a line"));
    printer->endDocument();

    EXPECT_EQ(pdf_reading::lines(path), QList<QStringList>{{QStringLiteral("a line")}});
    EXPECT_EQ(pdf_reading::info(path).title, QStringLiteral("Daily Blood Sugar Analysis"));
}

TEST_F(SystemPrintersTest, WithoutAPrinterAndAFileThereIsNoPrinter)
{
    EXPECT_CALL(dialogs_, askSavePath).WillOnce(Return(QString()));
    EXPECT_EQ(SystemPrinters(dialogs_, noPrinter).open(nullptr, QStringLiteral("Report")), nullptr);
    EXPECT_EQ(files(), QStringList());
}

TEST_F(SystemPrintersTest, TheUsersDocumentsAreProposedWhereThereIsSuchAFolder)
{
    ASSERT_TRUE(QDir(home_.path()).mkdir(QStringLiteral("Documents")));
    expectProposal(pathOf("Documents/Report.pdf"), QStringLiteral("Report"));
}

TEST_F(SystemPrintersTest, TheProposedNameHoldsNothingThatAFileNameCannot)
{
    expectProposal(pathOf("05-03-2002 to 07-03-2002.pdf"), QStringLiteral("05/03/2002 to 07/03/2002"));
    expectProposal(pathOf("Title-second line.pdf"), QStringLiteral("Title\r\nsecond line"));
    expectProposal(pathOf("Quillon.pdf"), QString());
}

TEST_F(SystemPrintersTest, ANameWithoutASuffixGetsOne)
{
    printInto(pathOf("mine"));
    EXPECT_EQ(files(), QStringList{QStringLiteral("mine.pdf")});
}

TEST_F(SystemPrintersTest, ADateAtANamesEndIsNoSuffix)
{
    printInto(pathOf("Report 5.3.2002"));
    EXPECT_EQ(files(), QStringList{QStringLiteral("Report 5.3.2002.pdf")});
}

TEST_F(SystemPrintersTest, ASuffixInCapitalsIsKept)
{
    printInto(pathOf("MINE.PDF"));
    EXPECT_EQ(files(), QStringList{QStringLiteral("MINE.PDF")});
}

TEST_F(SystemPrintersTest, AFileOfAnotherKindIsNeverReplaced)
{
    writeFile(pathOf("Nutrition.mdb"));
    printInto(pathOf("Nutrition.mdb"));
    EXPECT_EQ(QFileInfo(pathOf("Nutrition.mdb")).size(), 3);
    EXPECT_TRUE(QFileInfo::exists(pathOf("Nutrition.mdb.pdf")));
}

TEST_F(SystemPrintersTest, ThePathIsAskedAgainWhenItsSuffixMakesItThatOfAnotherFile)
{
    writeFile(pathOf("mine.pdf"));
    const testing::InSequence inThisOrder;
    EXPECT_CALL(dialogs_, askSavePath(_, _, pathOf("Report.pdf"), _)).WillOnce(Return(pathOf("mine")));
    EXPECT_CALL(dialogs_, askSavePath(_, _, pathOf("mine.pdf"), _)).WillOnce(Return(pathOf("other")));
    const auto printer = SystemPrinters(dialogs_, noPrinter).open(nullptr, QStringLiteral("Report"));
    ASSERT_NE(printer, nullptr);
    printer->print(QStringLiteral("line"));
    printer->endDocument();
    EXPECT_EQ(files(), (QStringList{QStringLiteral("mine.pdf"), QStringLiteral("other.pdf")}));
    EXPECT_EQ(QFileInfo(pathOf("mine.pdf")).size(), 3);
}

TEST_F(SystemPrintersTest, ASystemsPrinterIsTakenWithoutAQuestion)
{
    const QString path = pathOf("paper.pdf");
    SystemPrinters printers(dialogs_, [&] { return printerInto(path); });
    const auto printer = printers.open(nullptr, QStringLiteral("Report"));
    ASSERT_NE(printer, nullptr);
    printer->setCurrentX(1440);
    printer->print(QStringLiteral("inch"));
    printer->newPage();
    printer->print(QStringLiteral("two"));
    EXPECT_EQ(files(), QStringList());
    printer->endDocument();

    EXPECT_EQ(pdf_reading::info(path).title, QStringLiteral("Report"));
    const QList<pdf_reading::Word> words = pdf_reading::words(path);
    ASSERT_EQ(words.size(), 2);
    EXPECT_EQ(words[0].page, 1);
    EXPECT_NEAR(words[0].box.left(), 12 / 25.4 * 72 + 72, 0.5) << "in points, with a margin of 12 mm";
    EXPECT_EQ(words[1].page, 2);
}

TEST_F(SystemPrintersTest, AReportFillsThePaperThatIsInThePrinter)
{
    const auto letter = printerInto(pathOf("paper.pdf"));
    letter->setPageSize(QPageSize(QPageSize::Letter)); // 8.5 by 11 inches
    SystemPrinters printers(dialogs_, [&] { return letter; });
    const auto printer = printers.open(nullptr, QStringLiteral("Report"));
    EXPECT_NEAR(printer->scaleWidth(), (8.5 - 24 / 25.4) * 1440, 5);
    EXPECT_NEAR(printer->scaleHeight(), (11 - 24 / 25.4) * 1440, 5);
}

TEST_F(SystemPrintersTest, ADiscardedDocumentNeverReachesThePrinter)
{
    SystemPrinters printers(dialogs_, [&] { return printerInto(pathOf("paper.pdf")); });
    printers.open(nullptr, QStringLiteral("Report"))->print(QStringLiteral("line"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(SystemPrintersTest, APrinterTakesOneDocumentAfterTheOther)
{
    SystemPrinters printers(dialogs_, [&] { return printerInto(pathOf("paper.pdf")); });
    const auto printer = printers.open(nullptr, QStringLiteral("Report"));
    for (const char* text : {"first", "second"}) {
        printer->print(QLatin1String(text));
        printer->endDocument();
        EXPECT_EQ(pdf_reading::lines(pathOf("paper.pdf")), QList<QStringList>{{QLatin1String(text)}});
    }
}

TEST_F(SystemPrintersTest, APrinterThatDoesNotTakeThePagesIsAPrinterError)
{
    SystemPrinters printers(dialogs_, [&] { return printerInto(pathOf("missing/paper.pdf")); });
    const auto printer = printers.open(nullptr, QStringLiteral("Report"));
    printer->print(QStringLiteral("lost"));
    try {
        printer->endDocument();
        ADD_FAILURE() << "the pages were printed";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 482);
        EXPECT_EQ(error.words(), QStringLiteral("Printer error"));
        EXPECT_TRUE(error.hint().contains(QStringLiteral("did not take the pages"))) << error.text().toStdString();
    }
}

TEST_F(SystemPrintersTest, APrinterThatIsPluggedInLaterIsFound)
{
    std::shared_ptr<QPrinter> present;
    SystemPrinters printers(dialogs_, [&present] { return present; });
    EXPECT_CALL(dialogs_, askSavePath).WillOnce(Return(QString()));
    EXPECT_EQ(printers.open(nullptr, QStringLiteral("Report")), nullptr);

    present = printerInto(pathOf("paper.pdf"));
    EXPECT_NE(printers.open(nullptr, QStringLiteral("Report")), nullptr);
}

} // namespace
} // namespace controls
