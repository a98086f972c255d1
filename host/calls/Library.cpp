#include "calls/Library.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "calls/SystemReason.h"
#include "export/Quillon.h"
#include "terminal/Failure.h"

namespace {

// The host's blocks are large and of one size; exports do not check for their end.
constexpr std::size_t kBlockBytes = 64 * 1024;

// What an output block holds before the call, so that "wrote an empty text" and "wrote nothing"
// differ.
constexpr const char* kUntouched = "\x1A untouched \x1A";

// A block with a text in it, large enough for whatever an export writes in this call.
std::vector<char> blockFor(const CallArguments& arguments, const std::string& content) {
    const std::size_t textBytes = arguments.text ? arguments.text->size() + 1 : 0;
    std::vector<char> block(std::max({kBlockBytes, textBytes, content.size() + 1}));
    std::copy(content.begin(), content.end(), block.begin());
    return block;
}

// Discards standard output as long as the object lives.
class StandardOutputDropped {
public:
    StandardOutputDropped() {
        std::fflush(stdout);
        kept_ = ::dup(STDOUT_FILENO);
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere < 0) return;
        ::dup2(nowhere, STDOUT_FILENO);
        ::close(nowhere);
    }
    StandardOutputDropped(const StandardOutputDropped&) = delete;
    StandardOutputDropped& operator=(const StandardOutputDropped&) = delete;
    ~StandardOutputDropped() {
        std::fflush(stdout);
        if (kept_ < 0) return;
        ::dup2(kept_, STDOUT_FILENO);
        ::close(kept_);
    }

private:
    int kept_ = -1;
};

}  // namespace

void Library::Close::operator()(void* handle) const {
    ::dlclose(handle);
}

Library::Library(const std::string& path, LibraryPrints prints)
    : handle_(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)), prints_(prints) {
    if (handle_ == nullptr)
        throw Failure("the library " + path + " cannot be loaded (" + ::dlerror() + ")");
}

CallResult Library::resultOf(const Export& entry, const CallArguments& arguments) const {
    const std::string name(entry.name);
    auto* const function = reinterpret_cast<ExportFunction*>(::dlsym(handle_.get(), name.c_str()));
    if (function == nullptr) throw Failure("the library has no export " + name);

    const bool isOutput = entry.buffer == BufferUse::kOutput;
    std::vector<char> block = blockFor(arguments, arguments.buffer.value_or(kUntouched));
    const bool passBlock = isOutput || arguments.buffer.has_value();
    std::optional<StandardOutputDropped> dropped;
    if (prints_ == LibraryPrints::kDropped) dropped.emplace();
    const char* text = arguments.text ? arguments.text->c_str() : nullptr;
    try {
        errno = 0;
        const float status = function(text, arguments.value, passBlock ? block.data() : nullptr,
                                      static_cast<int>(block.size()), nullptr, 0, nullptr);
        const int error = errno;
        const bool wrote = isOutput && std::strcmp(block.data(), kUntouched) != 0;
        return {status, wrote ? std::optional<std::string>(block.data()) : std::nullopt, error};
    } catch (const std::out_of_range&) {
        throw Failure(name + " needs a dot in its second path: the extension is the file type");
    }
}

CallRecord Library::call(std::string_view name, const CallArguments& arguments) const {
    const Export& entry = requireExport(name);
    const auto start = std::chrono::steady_clock::now();
    CallResult result = resultOf(entry, arguments);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    Meaning meaning = meaningOf(entry, arguments, result.status);
    const std::string reason = systemReason(entry, arguments, result.status, result.error);
    if (!reason.empty()) meaning.sentence += " (" + reason + ')';
    return {std::string(name), arguments, std::move(result), std::move(meaning), time.count()};
}
