#include "cli/output.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace cli {
namespace {

constexpr qsizetype kBufferSize = 65536;

/// False with errno set.
bool writeAll(int stream, const QByteArray& bytes)
{
    const char* from = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(stream, from, left);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        from += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF) {
            // The lowest free number is this stream's. The wrong direction: reading and writing it fail.
            const int opened = ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
            static_cast<void>(opened);
        }
    }
}

void Output::writeLine(const QString& line)
{
    buffer_ += line.toUtf8();
    buffer_ += '\n';
    if (buffer_.size() >= kBufferSize) {
        flush();
    }
}

void Output::flush()
{
    const QByteArray bytes = std::exchange(buffer_, {});
    if (!writeAll(STDOUT_FILENO, bytes)) {
        throw OutputError(std::strerror(errno));
    }
}

void tell(const QString& message)
{
    // Nobody is left to be told when this fails.
    static_cast<void>(writeAll(STDERR_FILENO, QStringLiteral("quillonctl: %1\n").arg(message).toUtf8()));
}

} // namespace cli
