#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

TEST(Loading, TheLibraryLoadsWithEverySymbolBound) {
    void* library = ::dlopen(QUILLON_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << ::dlerror();
    ::dlclose(library);
}

}  // namespace
