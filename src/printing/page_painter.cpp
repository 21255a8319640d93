#include "printing/page_painter.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace printing {
namespace {

/// Reports put a date with its time between columns that are 2000 twips apart: at this size it fits in bold too.
constexpr double kPointSize = 8;
constexpr double kCharactersPerTab = 8;
/// In twips, between a column that had to be made narrower and the next.
constexpr double kGap = 40;
/// What is narrower than half its width cannot be read; it rather runs over what follows.
constexpr double kNarrowest = 0.5;

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
        if (character != u'\t' && character.category() == QChar::Other_Control) {
            character = u' ';
        }
    }
    return text;
}

struct Piece {
    QString text;
    double offset; ///< in dots, from the left end of the line
};

class PagePainter
{
public:
    PagePainter(QPainter& painter, QPagedPaintDevice& device)
        : painter_(painter), device_(device), scale_(device), plain_(font({}), &device)
    {
    }

    void draw(const Page& page)
    {
        for (auto mark = page.begin(); mark != page.end(); ++mark) {
            if (const auto* text = std::get_if<PlacedText>(&*mark)) {
                draw(*text, roomFor(*text, mark + 1, page.end()));
            } else {
                draw(std::get<PlacedPicture>(*mark));
            }
        }
    }

private:
    /// In dots: to the next text on the line, or else to the end of the printable area.
    [[nodiscard]] double roomFor(const PlacedText& text, Page::const_iterator next, Page::const_iterator end) const
    {
        for (; next != end; ++next) {
            const auto* other = std::get_if<PlacedText>(&*next);
            if (other == nullptr || other->corner.y() != text.corner.y() || other->corner.x() <= text.corner.x()) {
                break;
            }
            if (!other->text.trimmed().isEmpty()) {
                return (other->corner.x() - text.corner.x() - kGap) * scale_.across;
            }
        }
        return device_.width() - text.corner.x() * scale_.across;
    }

    /// A text that is too wide for its room is made narrower as a whole.
    void draw(const PlacedText& mark, double room)
    {
        const QFont styled = font(mark.style);
        const QFontMetricsF metrics(styled, &device_);
        const double tab = kCharactersPerTab * plain_.averageCharWidth();
        QList<Piece> pieces;
        double width = 0;
        double offset = 0;
        for (const QString& text : withoutControls(mark.text).split(u'\t')) {
            pieces.append({text, offset});
            width = offset + metrics.horizontalAdvance(text);
            offset = (std::floor(width / tab) + 1) * tab;
        }

        painter_.save();
        painter_.translate(mark.corner.x() * scale_.across, mark.corner.y() * scale_.down + plain_.ascent());
        if (width > room) {
            painter_.scale(std::max(room / width, kNarrowest), 1);
        }
        painter_.setFont(styled);
        painter_.setPen(pure(mark.style.colour));
        for (const Piece& piece : pieces) {
            painter_.drawText(QPointF(piece.offset, 0), piece.text);
        }
        painter_.restore();
    }

    void draw(const PlacedPicture& mark)
    {
        const QRectF place(mark.place.x() * scale_.across, mark.place.y() * scale_.down,
                           mark.place.width() * scale_.across, mark.place.height() * scale_.down);
        painter_.drawImage(place, mark.image);
    }

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
    if (!painter.begin(&device)) {
        return false;
    }
    painter.setRenderHint(QPainter::LosslessImageRendering); // text in a picture stays sharp
    PagePainter page(painter, device);
    for (auto marks = pages.begin(); marks != pages.end(); ++marks) {
        if (marks != pages.begin() && !device.newPage()) {
            return false;
        }
        page.draw(*marks);
    }
    return painter.end();
}

} // namespace printing
