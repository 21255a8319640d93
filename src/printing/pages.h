// Pages as they are laid out, before anything is painted. All measures are in twips from the upper left corner of the
// printable area.
#pragma once

#include "reports/printer.h"

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <variant>
#include <vector>

namespace printing {

struct TextStyle {
    bool bold = false;
    bool underlined = false;
    reports::Printer::Colour colour = reports::Printer::Colour::Black;
};

struct PlacedText {
    QPointF corner; ///< upper left, of the line
    QString text;   ///< one line; a tab goes to the next multiple of eight average characters from the line's start
    TextStyle style;
};

struct PlacedPicture {
    QRectF place;
    QImage image;
};

using Mark = std::variant<PlacedText, PlacedPicture>;
using Page = std::vector<Mark>;
using Pages = std::vector<Page>;

} // namespace printing
