// A PDF file is there whole or not at all.
#include "printing/pdf_printer.h"
#include "printing/pdf_reading.h"
#include "runtime/run_time_error.h"
#include "support/file_size_limit.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace printing {
namespace {

class PdfFile : public testing::Test
{
protected:
    std::unique_ptr<reports::Printer> printerTo(const QString& path)
    {
        return pdfPrinter(path, QStringLiteral("Daily Blood Sugar Analysis"));
    }

    void print(const QString& text)
    {
        const auto printer = printerTo(path_);
        printer->print(text);
        printer->endDocument();
    }

    /// The hint of the error 482 that printing there ends with.
    std::string refusal(const QString& path)
    {
        const auto printer = printerTo(path);
        printer->print(QStringLiteral("lost"));
        try {
            printer->endDocument();
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.number(), 482);
            EXPECT_EQ(error.words(), QStringLiteral("Printer error"));
            return error.hint().toStdString();
        }
        ADD_FAILURE() << "the pages were printed";
        return {};
    }

    QStringList files()
    {
        return QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(QStringLiteral("pages.pdf"));
};

TEST_F(PdfFile, HasTheDocumentsNameAsItsTitle)
{
    print(QStringLiteral("Text"));
    const pdf_reading::Info info = pdf_reading::info(path_);
    EXPECT_EQ(info.title, QStringLiteral("Daily Blood Sugar Analysis"));
    EXPECT_EQ(info.creator, QStringLiteral("Quillon"));
    EXPECT_EQ(info.pages, 1);
}

TEST_F(PdfFile, IsNotThereBeforeTheDocumentEnds)
{
    const auto printer = printerTo(path_);
    printer->print(QStringLiteral("Text"));
    printer->newPage();
    EXPECT_EQ(files(), QStringList());
    printer->endDocument();
    EXPECT_EQ(files(), QStringList{QStringLiteral("pages.pdf")});
}

TEST_F(PdfFile, IsNotMadeForADocumentThatIsDiscarded)
{
    printerTo(path_)->print(QStringLiteral("Text"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(PdfFile, IsNotMadeForADocumentWithoutOutput)
{
    printerTo(path_)->endDocument();
    EXPECT_EQ(files(), QStringList());
}

TEST_F(PdfFile, ReplacesAnOlderOneOnceItIsWhole)
{
    print(QStringLiteral("Old"));
    const auto printer = printerTo(path_);
    printer->print(QStringLiteral("New"));
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("Old")}});
    printer->endDocument();
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("New")}});
    EXPECT_EQ(files().size(), 1);
}

TEST_F(PdfFile, HoldsTheDocumentThatWasPrintedLast)
{
    const auto printer = printerTo(path_);
    printer->print(QStringLiteral("First"));
    printer->endDocument();
    printer->print(QStringLiteral("Second"));
    printer->endDocument();
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("Second")}});
}

TEST_F(PdfFile, InAFolderThatIsNotThereIsAPrinterError)
{
    const QString path = folder_.filePath(QStringLiteral("missing/pages.pdf"));
    EXPECT_EQ(refusal(path), "The file '" + path.toStdString() +
                                 "' cannot be written (No such file or directory). Choose another folder or name, then "
                                 "print again.");
    EXPECT_EQ(files(), QStringList());
}

TEST_F(PdfFile, InPlaceOfAFolderIsAPrinterError)
{
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("pages.pdf")));
    EXPECT_THAT(refusal(path_), testing::StartsWith("The file '" + path_.toStdString() + "' cannot be written ("));
    EXPECT_EQ(files(), QStringList{QStringLiteral("pages.pdf")});
    EXPECT_TRUE(QFileInfo(path_).isDir());
}

TEST_F(PdfFile, OnAFullDiskIsAPrinterErrorAndLeavesWhatWasThere)
{
    print(QStringLiteral("lost"));
    const qint64 whole = QFileInfo(path_).size();
    print(QStringLiteral("Old"));
    for (const qint64 room : {qint64(0), qint64(1), whole / 2, whole - 1}) {
        SCOPED_TRACE(room);
        const FileSizeLimit disk(room);
        EXPECT_EQ(refusal(path_), "The pages could not be written to '" + path_.toStdString() +
                                      "': the disk may be full. Free some space, then print again.");
        EXPECT_EQ(files(), QStringList{QStringLiteral("pages.pdf")});
    }
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("Old")}});
}

TEST_F(PdfFile, IsPrintedAgainAfterTheDiskHasRoomOnceMore)
{
    const auto printer = printerTo(path_);
    {
        const FileSizeLimit disk(0);
        printer->print(QStringLiteral("lost"));
        EXPECT_THROW(printer->endDocument(), runtime::RunTimeError);
    }
    printer->print(QStringLiteral("kept"));
    printer->endDocument();
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("kept")}});
}

} // namespace
} // namespace printing
