// A PDF file as poppler reads it.
#pragma once

#include <QImage>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>

namespace pdf_reading {

/// From the corner of the paper, in points of 1/72 inch.
struct Word {
    QString text;
    int page; ///< from 1
    QRectF box;
};

struct Info {
    QString title;
    QString creator;
    int pages;
};

/// All of these throw where the file cannot be read.
[[nodiscard]] Info info(const QString& path);
[[nodiscard]] QList<Word> words(const QString& path);
/// The lines of each page, trimmed, the empty ones left out.
[[nodiscard]] QList<QStringList> lines(const QString& path);
/// A whole page, each dot either painted or not: nothing is smoothed.
[[nodiscard]] QImage image(const QString& path, int page, int dotsPerInch);

} // namespace pdf_reading
