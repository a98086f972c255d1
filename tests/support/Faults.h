#pragma once
// Makes the system refuse what it usually allows, as long as the object lives.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iterator>

// Root may write everything; this gives up that right. Folders must let others in.
class WithoutRoot {
public:
    WithoutRoot() : before_(::geteuid()) { become(before_ == 0 ? 65534 : before_); }
    WithoutRoot(const WithoutRoot&) = delete;
    WithoutRoot& operator=(const WithoutRoot&) = delete;
    ~WithoutRoot() { become(before_); }

private:
    static void become(uid_t user) { EXPECT_EQ(::seteuid(user), 0); }

    uid_t before_;
};

// A disk that is full once a file has this length.
class FullDisk {
public:
    explicit FullDisk(rlim_t fileBytes) : signalBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit limit{fileBytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signalBefore_);
    }

private:
    void (*signalBefore_)(int);
    rlimit before_{};
};

// Room in the table of descriptors for so many more files.
class DescriptorLimit {
public:
    explicit DescriptorLimit(int spare) {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
        int number = 0;
        while (isOpen(number) || spare-- > 0)
            ++number;
        const rlimit limit{static_cast<rlim_t>(number), before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

private:
    static bool isOpen(int descriptor) { return ::fcntl(descriptor, F_GETFD) >= 0; }

    rlimit before_{};
};

// How many files this process has open.
inline std::ptrdiff_t openFiles() {
    return std::distance(std::filesystem::directory_iterator("/dev/fd"), {});
}
