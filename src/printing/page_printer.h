// A printer that lays its document out in memory and hands it over when it ends, so that a document that is discarded
// leaves nothing on any device.
#pragma once

#include "printing/page_painter.h"
#include "printing/pages.h"

#include <functional>

namespace printing {

class PagePrinter : public reports::Printer
{
public:
    /// Puts a whole document on its device; 482 when that fails. Never called with a document without output.
    using Deliver = std::function<void(const Pages& pages)>;

    PagePrinter(const PageMetrics& metrics, Deliver deliver);

    [[nodiscard]] double scaleWidth() const override { return metrics_.width; }
    [[nodiscard]] double scaleHeight() const override { return metrics_.height; }
    [[nodiscard]] double textHeight(const QString&) const override { return metrics_.lineHeight; }

    [[nodiscard]] double currentX() const override { return position_.x(); }
    [[nodiscard]] double currentY() const override { return position_.y(); }
    void setCurrentX(double twips) override { position_.setX(twips); }
    void setCurrentY(double twips) override { position_.setY(twips); }

    void makeRoomForLine() override;
    void print(const QString& text) override;
    void printImage(const QImage& image) override;

    [[nodiscard]] int page() const override;
    void newPage() override;
    void endDocument() override;

    void setBold(bool bold) override { style_.bold = bold; }
    void setUnderlined(bool underlined) override { style_.underlined = underlined; }
    void setColour(Colour colour) override { style_.colour = colour; }

private:
    void begin();
    void place(Mark mark);

    PageMetrics metrics_;
    Deliver deliver_;
    Pages pages_; ///< none before the first output
    QPointF position_;
    TextStyle style_;
};

} // namespace printing
