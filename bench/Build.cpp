#include "Build.h"

#include <dlfcn.h>

#include <array>
#include <filesystem>

#include "export/Quillon.h"
#include "operations/Operations.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kBlockBytes = 4096;  // a path fits, and any text that an export writes

void* open(const std::filesystem::path& path) {
    return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

}  // namespace

void Build::Close::operator()(void* handle) const {
    ::dlclose(handle);
}

Build::Build(const std::string& library)
    : library_(open(library)),
      operations_(open(std::filesystem::path(library).replace_filename(kOperationsModule))) {
    if (library_ == nullptr) throw Failure("cannot load " + library);
}

Build::Function Build::find(const std::string& name) const {
    if (void* const symbol = ::dlsym(library_.get(), name.c_str())) {
        auto* const function = reinterpret_cast<ExportFunction*>(symbol);
        return [=](const char* text, double value, char* buffer) {
            return function(text, value, buffer, kBlockBytes, nullptr, 0, nullptr);
        };
    }
    if (operations_ == nullptr) return {};
    auto* const findIn =
        reinterpret_cast<decltype(&findOperation)>(::dlsym(operations_.get(), "findOperation"));
    return findIn(name.c_str());
}

Build::Call Build::call(const std::string& name, const CallArguments& arguments) const {
    const Function function = find(name);
    if (!function) return {};
    return [=] {
        std::array<char, kBlockBytes> block{};
        if (arguments.buffer) arguments.buffer->copy(block.data(), block.size() - 1);
        const char* const text = arguments.text ? arguments.text->c_str() : nullptr;
        return function(text, arguments.value, block.data());
    };
}
