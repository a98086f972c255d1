// A host of macOS in one function, compiled for macOS by scripts/test-macos: calls an export and catches
// what it throws.

#include <stdexcept>

#include "export/Quillon.h"

extern "C" __attribute__((visibility("default"))) int callAndCatch(ExportFunction* function,
                                                                   const char* text, double value,
                                                                   char* buffer1);

// Returns 1 for std::out_of_range, 2 for anything else, 0 if nothing was thrown.
int callAndCatch(ExportFunction* function, const char* text, double value, char* buffer1) {
    try {
        function(text, value, buffer1, 0, nullptr, 0, nullptr);
    } catch (const std::out_of_range&) {
        return 1;
    } catch (...) {
        return 2;
    }
    return 0;
}
