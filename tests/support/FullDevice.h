#pragma once
// /dev/full, on which every write fails as on a full disk.

#include <gtest/gtest.h>

// Skips a test that needs it where there is none.
#ifdef __linux__
#define NEEDS_FULL_DEVICE() static_cast<void>(0)
#else
#define NEEDS_FULL_DEVICE() \
    GTEST_SKIP() << "needs /dev/full, a disk that is always full, which only Linux has"
#endif
