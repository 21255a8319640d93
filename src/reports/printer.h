// What reports print on: pages, a current position, and the look of the text.
#pragma once

#include <QString>

class QImage;

namespace reports {

/// Twips to the inch; all positions and extents of a printer are in twips.
inline constexpr double kTwipsPerInch = 1440;
/// A picture's pixels are those of a screen, 96 to the inch.
inline constexpr double kTwipsPerPixel = kTwipsPerInch / 96;

/// Positions count from the upper left corner of the page's printable area. The first output begins the document; one
/// that is destroyed before endDocument() is discarded. A failure is run-time error 482 and ends the document.
class Printer
{
public:
    enum class Colour { Black, Red, Blue, Green }; ///< pure: (0,0,0), (255,0,0), (0,0,255), (0,255,0)

    virtual ~Printer() = default;

    [[nodiscard]] virtual double scaleWidth() const = 0;  ///< of the printable area
    [[nodiscard]] virtual double scaleHeight() const = 0; ///< of the printable area
    /// Of a line in the printer's font; the same for every text.
    [[nodiscard]] virtual double textHeight(const QString& text) const = 0;

    [[nodiscard]] virtual double currentX() const = 0;
    [[nodiscard]] virtual double currentY() const = 0;
    virtual void setCurrentX(double twips) = 0;
    virtual void setCurrentY(double twips) = 0;

    /// Where a line at the current position would not be wholly on the page, starts a new page, at whose top the line
    /// then stands. print() and printImage() do so by themselves; it is for those who put several texts on one line.
    virtual void makeRoomForLine() = 0;
    /// One line at the current position, tabs going to every eighth character; moves to the start of the next line.
    virtual void print(const QString& text) = 0;
    /// A picture at the current position, a pixel being kTwipsPerPixel (less where its device pixel ratio is above 1);
    /// moves to the start of the line below it. It is made smaller, in proportion, where the page has not enough room.
    virtual void printImage(const QImage& image) = 0;

    [[nodiscard]] virtual int page() const = 0; ///< the current page, from 1
    virtual void newPage() = 0;                 ///< moves to its upper left corner
    /// The document is printed when this returns; what is printed later belongs to a new one.
    virtual void endDocument() = 0;

    virtual void setBold(bool bold) = 0;
    virtual void setUnderlined(bool underlined) = 0;
    virtual void setColour(Colour colour) = 0;
};

} // namespace reports
