// A disk that is full: as long as this lives, the process can make no file longer than so many bytes.
#pragma once

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>

class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes) : signalBefore_(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit limit{static_cast<rlim_t>(bytes), before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signalBefore_);
    }

private:
    void (*signalBefore_)(int);
    rlimit before_{};
};
