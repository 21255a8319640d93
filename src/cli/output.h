// Standard output and standard error as UTF-8.
#pragma once

#include <QByteArray>
#include <QString>

#include <stdexcept>

namespace cli {

/// Opens what the caller has closed of standard input, output and error, in a way that using it fails. Otherwise the
/// diary could be opened under the number of standard output, and the report be written into it.
void occupyStandardStreams();

/// Standard output does not take what is written (the reader is gone, the disk is full).
class OutputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Standard output, buffered. What is not flushed is lost: only flush() can tell that writing failed.
class Output
{
public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void writeLine(const QString& line); ///< throws OutputError
    void flush();                        ///< throws OutputError

private:
    QByteArray buffer_;
};

/// One message on standard error, the program's name before it.
void tell(const QString& message);

} // namespace cli
