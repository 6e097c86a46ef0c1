// A disk that is full.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

/// While this lives, files can't grow beyond a size, as if the disk were full then.
class FileSizeLimit {
public:
    FileSizeLimit() { EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0); }
    ~FileSizeLimit() {
        lift();
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void set(rlim_t bytes) {
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    void lift() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
    void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};
