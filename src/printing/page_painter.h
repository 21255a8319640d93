// Laid out pages on a device: a printer or a PDF file.
#pragma once

#include "printing/pages.h"

#include <QMarginsF>

class QPagedPaintDevice;

namespace printing {

/// In millimetres, on all four sides. Wide enough for any printer.
inline constexpr QMarginsF kMargins(12, 12, 12, 12);

/// What laying out needs to know of a device. In twips.
struct PageMetrics {
    double width;  ///< of the printable area
    double height; ///< of the printable area
    double lineHeight;
};

[[nodiscard]] PageMetrics metricsOf(const QPagedPaintDevice& device);

/// Paints a whole document. False when the device does not take it.
[[nodiscard]] bool paintPages(QPagedPaintDevice& device, const Pages& pages);

} // namespace printing
