#include "readings/text_lines.h"

#include "runtime/run_time_error.h"

#include <QStringDecoder>

#include <algorithm>

namespace readings {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

constexpr qsizetype kChunkBytes = 65536;

bool endsLine(char character)
{
    return character == '\n' || character == '\r';
}

/// A mark of byte order says so; without one, one half of the first character is zero in any export of a meter.
bool hasWideCharacters(const QByteArray& start)
{
    return start.startsWith("\xFF\xFE") || start.startsWith("\xFE\xFF") || start.left(2).contains('\0');
}

} // namespace

TextLines::TextLines(const QString& path) : file_(path)
{
    if (!file_.exists()) {
        throw RunTimeError(ErrorNumber::FileNotFoundOnDisk)
            .withHint(QStringLiteral("There is no file at '%1'.").arg(path));
    }
    if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        throw RunTimeError(ErrorNumber::DiskError).withHint(QStringLiteral("'%1': %2.").arg(path, file_.errorString()));
    }
    if (fill() && hasWideCharacters(chunk_)) {
        throw RunTimeError(ErrorNumber::InvalidFileFormat)
            .withHint(QStringLiteral("'%1' is no text of 8-bit characters. Save it as plain text (ANSI or UTF-8) and "
                                     "import that.")
                          .arg(path));
    }
}

bool TextLines::next()
{
    line_.clear();
    isCut_ = false;
    ++number_;
    bool isLine = false;
    while (fill()) {
        isLine = true;
        const char* const begin = chunk_.constData() + at_;
        const char* const end = chunk_.constData() + chunk_.size();
        const char* const lineEnd = std::find_if(begin, end, endsLine);
        keep(begin, lineEnd);
        at_ += lineEnd - begin;
        if (lineEnd != end) {
            skipLineEnd();
            break;
        }
    }
    return isLine;
}

QString TextLines::text() const
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(line_);
    return decoder.hasError() ? QString::fromLatin1(line_) : text;
}

/// Makes sure that there is a byte to read; false at the end of the file.
bool TextLines::fill()
{
    if (at_ < chunk_.size()) {
        return true;
    }
    chunk_.resize(kChunkBytes);
    const qint64 count = file_.read(chunk_.data(), kChunkBytes);
    if (file_.error() != QFile::NoError) {
        throw RunTimeError(ErrorNumber::DiskError)
            .withHint(QStringLiteral("'%1': %2.").arg(file_.fileName(), file_.errorString()));
    }
    chunk_.resize(std::max<qint64>(count, 0));
    at_ = 0;
    return !chunk_.isEmpty();
}

void TextLines::keep(const char* begin, const char* end)
{
    const qsizetype count = std::min<qsizetype>(end - begin, kMostBytes - line_.size());
    line_.append(begin, count);
    isCut_ = isCut_ || count < end - begin;
}

void TextLines::skipLineEnd()
{
    const bool isReturn = chunk_.at(at_++) == '\r';
    if (isReturn && fill() && chunk_.at(at_) == '\n') {
        ++at_;
    }
}

} // namespace readings
