#include "support/Plugin.h"

#include <dlfcn.h>

#include <stdexcept>

#include "export/Quillon.h"

Plugin::Plugin() : library_(::dlopen(QUILLON_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    if (library_ == nullptr) throw std::runtime_error(::dlerror());
}

Plugin::~Plugin() {
    ::dlclose(library_);
}

float Plugin::call(const char* exportName, const Arguments& arguments) const {
    const auto function = reinterpret_cast<ExportFunction*>(symbol(exportName));
    constexpr int kNoSize = -1;
    const auto nowhere = reinterpret_cast<char*>(1);
    return function(arguments.text, arguments.value, arguments.buffer1, kNoSize, nowhere, kNoSize,
                    reinterpret_cast<char**>(nowhere));
}

void* Plugin::symbol(const char* name) const {
    void* address = ::dlsym(library_, name);
    if (address == nullptr) throw std::runtime_error(std::string("no symbol ") + name);
    return address;
}

Block::Block(std::string_view text) : bytes_() {
    if (text.size() >= bytes_.size()) throw std::length_error("text longer than the block");
    text.copy(bytes_.data(), text.size());
}
