// The lines of a text file of any size and any content, in little memory.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace readings {

/// Stands before the first line until next() is called. CR LF, LF or CR ends a line; the last may go without.
/// Errors are runtime::RunTimeError.
class TextLines
{
public:
    /// What a line has more than this is passed over, so that a file without line ends does not fill the memory.
    static constexpr qsizetype kMostBytes = 4096;

    /// 53 no such file, 3043 it cannot be read, 321 its characters are of 16 bits.
    explicit TextLines(const QString& path);

    /// Goes to the next line; false at the end of the file. 3043 when the file cannot be read on.
    [[nodiscard]] bool next();

    [[nodiscard]] qint64 number() const { return number_; } ///< of the line, from 1
    [[nodiscard]] QString text() const; ///< from UTF-8, or Latin-1 where it is none; without a mark of byte order
    [[nodiscard]] bool isCut() const { return isCut_; } ///< whether text() is not the whole line

private:
    [[nodiscard]] bool fill();
    void keep(const char* begin, const char* end);
    void skipLineEnd();

    QFile file_;
    QByteArray chunk_;
    qsizetype at_ = 0; ///< in the chunk, of what is read next
    QByteArray line_;
    bool isCut_ = false;
    qint64 number_ = 0;
};

} // namespace readings
