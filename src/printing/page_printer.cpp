#include "printing/page_printer.h"

#include <QSizeF>

#include <algorithm>
#include <utility>

namespace printing {
namespace {

/// Positions are sums of rounded figures: a line that exceeds the page by less than this stands on it.
constexpr double kTolerance = 1;

} // namespace

PagePrinter::PagePrinter(const PageMetrics& metrics, Deliver deliver) : metrics_(metrics), deliver_(std::move(deliver))
{
}

void PagePrinter::makeRoomForLine()
{
    if (position_.y() + metrics_.lineHeight <= metrics_.height + kTolerance) {
        return;
    }
    const double x = position_.x();
    newPage();
    position_.setX(x);
}

void PagePrinter::print(const QString& text)
{
    makeRoomForLine();
    place(PlacedText{position_, text, style_});
    position_ = {0, position_.y() + metrics_.lineHeight};
}

void PagePrinter::printImage(const QImage& image)
{
    if (image.isNull()) {
        return;
    }
    makeRoomForLine();
    const QPointF corner(std::max(0.0, position_.x()), std::max(0.0, position_.y()));
    const QSizeF room(metrics_.width - corner.x(), metrics_.height - corner.y());
    QSizeF size = image.deviceIndependentSize() * reports::kTwipsPerPixel;
    if (size != size.boundedTo(room)) {
        size.scale(room, Qt::KeepAspectRatio);
    }
    place(PlacedPicture{QRectF(corner, size), image});
    position_ = {0, corner.y() + size.height()};
}

int PagePrinter::page() const
{
    return pages_.empty() ? 1 : static_cast<int>(pages_.size());
}

void PagePrinter::newPage()
{
    begin();
    pages_.emplace_back();
    position_ = {};
}

void PagePrinter::endDocument()
{
    const Pages document = std::exchange(pages_, {});
    position_ = {};
    if (!document.empty()) {
        deliver_(document);
    }
}

void PagePrinter::begin()
{
    if (pages_.empty()) {
        pages_.emplace_back();
    }
}

void PagePrinter::place(Mark mark)
{
    begin();
    pages_.back().push_back(std::move(mark));
}

} // namespace printing
