// A printer with known measures that keeps what is printed, for tests to read.
#pragma once

#include "reports/printer.h"

#include <QSizeF>
#include <QString>

#include <string>
#include <vector>

struct PrintedText {
    QString text;
    double x = 0; ///< twips, as all positions and sizes
    double y = 0;
    bool bold = false;
    bool underlined = false;
    reports::Printer::Colour colour = reports::Printer::Colour::Black;
};

struct PrintedImage {
    double x = 0;
    double y = 0;
    QSizeF size; ///< on paper
};

struct PrintedPage {
    std::vector<PrintedText> texts; ///< in the order of printing
    std::vector<PrintedImage> images;

    /// The texts alone.
    [[nodiscard]] std::vector<std::string> words() const;
};

struct PrintedDocument {
    enum class State { Open, Printed, Discarded };

    std::vector<PrintedPage> pages;
    State state = State::Open;

    [[nodiscard]] bool isPrinted() const { return state == State::Printed; }
};

/// What printers have put out, one after the other; it outlives them.
using Printout = std::vector<PrintedDocument>;

/// Every text is as high as any other. Widths are not measured: no text is too wide.
class RecordingPrinter : public reports::Printer
{
public:
    struct Measures {
        double width = 10000;
        double height = 2400; ///< ten lines
        double lineHeight = 240;
    };

    explicit RecordingPrinter(Printout& printout) : RecordingPrinter(printout, Measures{}) {}
    RecordingPrinter(Printout& printout, const Measures& measures) : printout_(printout), measures_(measures) {}
    RecordingPrinter(const RecordingPrinter&) = delete;
    RecordingPrinter& operator=(const RecordingPrinter&) = delete;
    ~RecordingPrinter() override;

    /// The output of that number from now on, the next one being 1, fails with 482; those after it succeed. Outputs are
    /// print(), printImage(), newPage() and endDocument().
    void failAtOutput(int number) { outputsToFailure_ = number; }

    [[nodiscard]] double scaleWidth() const override { return measures_.width; }
    [[nodiscard]] double scaleHeight() const override { return measures_.height; }
    [[nodiscard]] double textHeight(const QString& text) const override;

    [[nodiscard]] double currentX() const override { return x_; }
    [[nodiscard]] double currentY() const override { return y_; }
    void setCurrentX(double twips) override { x_ = twips; }
    void setCurrentY(double twips) override { y_ = twips; }

    void makeRoomForLine() override;
    void print(const QString& text) override;
    void printImage(const QImage& image) override;

    [[nodiscard]] int page() const override;
    void newPage() override;
    void endDocument() override;

    void setBold(bool bold) override { bold_ = bold; }
    void setUnderlined(bool underlined) override { underlined_ = underlined; }
    void setColour(Colour colour) override { colour_ = colour; }

private:
    [[nodiscard]] bool hasOpenDocument() const;
    void beginOutput();
    PrintedPage& currentPage();
    void startPage();
    void closeDocument(PrintedDocument::State state);
    void goBelow(double height);

    Printout& printout_;
    Measures measures_;
    double x_ = 0;
    double y_ = 0;
    bool bold_ = false;
    bool underlined_ = false;
    Colour colour_ = Colour::Black;
    int outputsToFailure_ = 0; ///< 0: none fails
};
