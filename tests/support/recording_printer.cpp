#include "support/recording_printer.h"

#include "runtime/run_time_error.h"

#include <QImage>

std::vector<std::string> PrintedPage::words() const
{
    std::vector<std::string> words;
    words.reserve(texts.size());
    for (const PrintedText& printed : texts) {
        words.push_back(printed.text.toStdString());
    }
    return words;
}

RecordingPrinter::~RecordingPrinter()
{
    closeDocument(PrintedDocument::State::Discarded);
}

double RecordingPrinter::textHeight(const QString&) const
{
    return measures_.lineHeight;
}

void RecordingPrinter::makeRoomForLine()
{
    if (y_ > measures_.height - measures_.lineHeight) {
        startPage();
        y_ = 0;
    }
}

void RecordingPrinter::print(const QString& text)
{
    beginOutput();
    makeRoomForLine();
    currentPage().texts.push_back({text, x_, y_, bold_, underlined_, colour_});
    goBelow(measures_.lineHeight);
}

void RecordingPrinter::printImage(const QImage& image)
{
    constexpr double kPixelsPerInch = 96;

    beginOutput();
    makeRoomForLine();
    QSizeF size = image.deviceIndependentSize() * (reports::kTwipsPerInch / kPixelsPerInch);
    const QSizeF room(measures_.width - x_, measures_.height - y_);
    if (size.width() > room.width() || size.height() > room.height()) {
        size.scale(room, Qt::KeepAspectRatio);
    }
    currentPage().images.push_back({x_, y_, size});
    goBelow(size.height());
}

int RecordingPrinter::page() const
{
    return hasOpenDocument() ? static_cast<int>(printout_.back().pages.size()) : 1;
}

void RecordingPrinter::newPage()
{
    beginOutput();
    startPage();
    x_ = 0;
    y_ = 0;
}

void RecordingPrinter::endDocument()
{
    beginOutput();
    closeDocument(PrintedDocument::State::Printed);
}

bool RecordingPrinter::hasOpenDocument() const
{
    return !printout_.empty() && printout_.back().state == PrintedDocument::State::Open;
}

void RecordingPrinter::beginOutput()
{
    if (outputsToFailure_ > 0 && --outputsToFailure_ == 0) {
        closeDocument(PrintedDocument::State::Discarded);
        throw runtime::RunTimeError(runtime::ErrorNumber::PrinterError);
    }
}

PrintedPage& RecordingPrinter::currentPage()
{
    if (!hasOpenDocument()) {
        printout_.push_back({{PrintedPage{}}, PrintedDocument::State::Open});
    }
    return printout_.back().pages.back();
}

void RecordingPrinter::startPage()
{
    currentPage(); // the document's first, should it not have begun
    printout_.back().pages.emplace_back();
}

void RecordingPrinter::closeDocument(PrintedDocument::State state)
{
    if (hasOpenDocument()) {
        printout_.back().state = state;
    }
    x_ = 0;
    y_ = 0;
}

void RecordingPrinter::goBelow(double height)
{
    x_ = 0;
    y_ += height;
}
