#include "printing/page_painter.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>

#include <cmath>

namespace printing {
namespace {

/// Reports put a date with its time between columns that are 2000 twips apart: at this size it fits in bold too.
constexpr double kPointSize = 8;
constexpr double kCharactersPerTab = 8;

QFont font(const TextStyle& style)
{
    QFont font;
    font.setFamilies({QStringLiteral("DejaVu Sans"), QStringLiteral("sans-serif")});
    font.setStyleHint(QFont::SansSerif);
    font.setStyleStrategy(QFont::PreferNoShaping); // ligatures would keep words of a PDF file from being found
    font.setPointSizeF(kPointSize);
    font.setBold(style.bold);
    font.setUnderline(style.underlined);
    return font;
}

QColor pure(reports::Printer::Colour colour)
{
    switch (colour) {
    case reports::Printer::Colour::Red:
        return {255, 0, 0};
    case reports::Printer::Colour::Blue:
        return {0, 0, 255};
    case reports::Printer::Colour::Green:
        return {0, 255, 0};
    case reports::Printer::Colour::Black:
        break;
    }
    return {0, 0, 0};
}

/// Devices count in dots of their own.
struct Scale {
    explicit Scale(const QPagedPaintDevice& device)
        : across(device.logicalDpiX() / reports::kTwipsPerInch), down(device.logicalDpiY() / reports::kTwipsPerInch)
    {
    }

    double across; ///< dots to the twip
    double down;
};

/// A line break or another control character would print as a box.
QString withoutControls(QString text)
{
    for (QChar& character : text) {
        if (character != u'\t' && character.category() == QChar::Other_Control)
            character = u' ';
    }
    return text;
}

class PagePainter
{
public:
    PagePainter(QPainter& painter, QPagedPaintDevice& device)
        : painter_(painter), device_(device), scale_(device), plain_(font({}), &device)
    {
    }

    void draw(const PlacedText& mark)
    {
        const QFont styled = font(mark.style);
        const QFontMetricsF metrics(styled, &device_);
        const double tab = kCharactersPerTab * plain_.averageCharWidth();
        const double left = mark.corner.x() * scale_.across;
        const double baseline = mark.corner.y() * scale_.down + plain_.ascent();

        painter_.setFont(styled);
        painter_.setPen(pure(mark.style.colour));
        double offset = 0;
        for (const QString& piece : withoutControls(mark.text).split(u'\t')) {
            painter_.drawText(QPointF(left + offset, baseline), piece);
            offset = (std::floor((offset + metrics.horizontalAdvance(piece)) / tab) + 1) * tab;
        }
    }

    void draw(const PlacedPicture& mark)
    {
        const QRectF place(mark.place.x() * scale_.across, mark.place.y() * scale_.down,
                           mark.place.width() * scale_.across, mark.place.height() * scale_.down);
        painter_.drawImage(place, mark.image);
    }

private:
    QPainter& painter_;
    QPagedPaintDevice& device_;
    Scale scale_;
    QFontMetricsF plain_;
};

} // namespace

PageMetrics metricsOf(const QPagedPaintDevice& device)
{
    const Scale scale(device);
    const QFontMetricsF plain(font({}), &device);
    return {device.width() / scale.across, device.height() / scale.down, plain.lineSpacing() / scale.down};
}

bool paintPages(QPagedPaintDevice& device, const Pages& pages)
{
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    painter.setRenderHint(QPainter::LosslessImageRendering); // text in a picture stays sharp
    PagePainter page(painter, device);
    for (auto marks = pages.begin(); marks != pages.end(); ++marks) {
        if (marks != pages.begin() && !device.newPage())
            return false;
        for (const Mark& mark : *marks)
            std::visit([&page](const auto& each) { page.draw(each); }, mark);
    }
    return painter.end();
}

} // namespace printing
