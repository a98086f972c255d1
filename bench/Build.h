#pragma once
// A build of the library: its exports, and the operations that no export reaches.

#include <functional>
#include <memory>
#include <string>

#include "exports/CallArguments.h"

class Build {
public:
    // `library` is the path of libQuillon.so. The module with the operations is in the same folder; a
    // build without it has exports only.
    explicit Build(const std::string& library);

    // An export, or an operation called like one; empty if the build does not have it.
    using Function = std::function<float(const char* text, double value, char* buffer)>;
    Function find(const std::string& name) const;

    // The same with its arguments. A missing path is a null pointer, a missing second path a block for
    // a text.
    using Call = std::function<float()>;
    Call call(const std::string& name, const CallArguments& arguments) const;

private:
    struct Close {
        void operator()(void* handle) const;
    };
    using Handle = std::unique_ptr<void, Close>;

    Handle library_;
    Handle operations_;  // null if there is none
};
