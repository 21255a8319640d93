#include "printing/pdf_reading.h"

#include <QProcess>
#include <QXmlStreamReader>

#include <stdexcept>

namespace pdf_reading {
namespace {

QByteArray outputOf(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromLocal8Bit(program), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        throw std::runtime_error(std::string(program) + " fails: " + process.readAllStandardError().toStdString());
    }
    return process.readAllStandardOutput();
}

QString valueOf(const QString& key, const QString& listing)
{
    for (const QString& line : listing.split(u'\n')) {
        if (line.startsWith(key + u':')) {
            return line.mid(key.size() + 1).trimmed();
        }
    }
    return {};
}

} // namespace

Info info(const QString& path)
{
    const QString listing = QString::fromUtf8(outputOf(QUILLON_PDFINFO, {path}));
    return {valueOf(QStringLiteral("Title"), listing), valueOf(QStringLiteral("Creator"), listing),
            valueOf(QStringLiteral("Pages"), listing).toInt()};
}

QList<Word> words(const QString& path)
{
    QXmlStreamReader reader(outputOf(QUILLON_PDFTOTEXT, {QStringLiteral("-bbox"), path, QStringLiteral("-")}));
    QList<Word> words;
    int page = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (reader.name() == QLatin1String("page")) {
            ++page;
        } else if (reader.name() == QLatin1String("word")) {
            const QXmlStreamAttributes attributes = reader.attributes();
            const auto edge = [&attributes](const char* name) {
                return attributes.value(QLatin1String(name)).toDouble();
            };
            const QRectF box(QPointF(edge("xMin"), edge("yMin")), QPointF(edge("xMax"), edge("yMax")));
            words.append({reader.readElementText(), page, box});
        }
    }
    if (reader.hasError()) {
        throw std::runtime_error(reader.errorString().toStdString());
    }
    return words;
}

QList<QStringList> lines(const QString& path)
{
    const QString text =
        QString::fromUtf8(outputOf(QUILLON_PDFTOTEXT, {QStringLiteral("-layout"), path, QStringLiteral("-")}));
    QList<QStringList> pages;
    for (const QString& page : text.chopped(text.endsWith(u'\f') ? 1 : 0).split(u'\f')) {
        QStringList& found = pages.emplaceBack();
        for (const QString& line : page.split(u'\n', Qt::SkipEmptyParts)) {
            if (!line.trimmed().isEmpty()) {
                found.append(line.trimmed());
            }
        }
    }
    return pages;
}

QImage image(const QString& path, int page, int dotsPerInch)
{
    const QString number = QString::number(page);
    const QByteArray picture =
        outputOf(QUILLON_PDFTOPPM, {QStringLiteral("-r"), QString::number(dotsPerInch), QStringLiteral("-f"), number,
                                    QStringLiteral("-l"), number, QStringLiteral("-aa"), QStringLiteral("no"),
                                    QStringLiteral("-aaVector"), QStringLiteral("no"), path});
    QImage image = QImage::fromData(picture, "PPM");
    if (image.isNull()) {
        throw std::runtime_error("there is no such page");
    }
    return image;
}

} // namespace pdf_reading
