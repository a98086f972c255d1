// The library's side of scripts/compare: a process that makes one call per line of its input.
//
//   compare_server LIBRARY
//
// A request is a name and its arguments, separated by spaces: "-" is null, "=" starts a text in
// hexadecimal, "#" a number, "*" is the host's memory block. The name is that of an export, which
// is called in LIBRARY with text, value and buffer1; or that of an operation, called in
// quillon_core; or "folder", which makes a folder the working folder and forgets what earlier calls
// left in memory.
//
// The reply is a line of three: the bits of the status in hexadecimal, or "out_of_range"; the text
// in the memory block; what the call printed. A text is in hexadecimal after "=", "-" is none.

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bmp/BmpOps.h"
#include "encoders/JpegOps.h"
#include "export/Quillon.h"
#include "files/FileOps.h"
#include "mesh/VemoOps.h"
#include "psd/PsdOps.h"
#include "tiff/TiffOps.h"

namespace {

constexpr std::size_t kBlockBytes = 8192;
constexpr char kUntouched = '\xEE';

std::vector<char> block(kBlockBytes);

struct Argument {
    char* text = nullptr;
    double number = 0.0;
    std::vector<char> bytes;  // exactly as long as the text with its NUL: a sanitizer sees its end
};

std::string hexadecimal(const std::string& bytes) {
    std::string digits = "=";
    for (const char byte : bytes) {
        digits += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
        digits += "0123456789abcdef"[static_cast<unsigned char>(byte) & 15];
    }
    return digits;
}

Argument argument(const std::string& word) {
    Argument result;
    if (word == "*") result.text = block.data();
    if (word[0] == '#') result.number = std::strtod(word.c_str() + 1, nullptr);
    if (word[0] == '=') {
        for (std::size_t i = 1; i + 1 < word.size(); i += 2)
            result.bytes.push_back(
                static_cast<char>(std::strtol(word.substr(i, 2).c_str(), nullptr, 16)));
        result.bytes.push_back('\0');
        result.text = result.bytes.data();
    }
    return result;
}

// The text in the block after a call; a block without an end of text has been overrun.
std::string blockText() {
    const auto end = std::find(block.begin(), block.end(), '\0');
    const auto rest = end == block.end() ? block.begin() : end + 1;
    if (!std::all_of(rest, block.end(), [](char c) { return c == kUntouched; })) return "overrun";
    return end == block.end() ? "-" : hexadecimal({block.begin(), end});
}

// What was printed since the last time.
std::string printedText() {
    std::fflush(stdout);
    std::string text;
    char bytes[256];
    ::lseek(STDOUT_FILENO, 0, SEEK_SET);
    for (ssize_t count; (count = ::read(STDOUT_FILENO, bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<std::size_t>(count));
    if (text.empty()) return "-";
    ::lseek(STDOUT_FILENO, 0, SEEK_SET);
    return ::ftruncate(STDOUT_FILENO, 0) == 0 ? hexadecimal(text) : "unreadable";
}

using Arguments = std::vector<Argument>;
using Operation = std::function<float(Arguments&)>;

template <typename Parameter>
Parameter passed(const Argument& argument) {
    if constexpr (std::is_arithmetic_v<Parameter>)
        return static_cast<Parameter>(argument.number);
    else
        return argument.text;
}

// Calls a function with as many arguments as it has parameters.
template <typename Result, typename... Parameters>
Operation operation(Result (*function)(Parameters...)) {
    return [function](Arguments& arguments) {
        arguments.resize(sizeof...(Parameters));
        return [&]<std::size_t... i>(std::index_sequence<i...>) {
            return static_cast<float>(function(passed<Parameters>(arguments[i])...));
        }
        (std::index_sequence_for<Parameters...>{});
    };
}

float clearFolder(const char* path) {
    return static_cast<float>(ClearFolder(path));
}

float extractFileName(const char* path, int mode) {
    const std::string piece = FileNameExtract(path, mode);
    std::copy_n(piece.c_str(), piece.size() + 1, block.data());
    return 0.0f;
}

const std::map<std::string, Operation> kOperations = {
    {"ClearFolder", operation(clearFolder)},
    {"FileNameExtract", operation(extractFileName)},
    {"GetFaceIDsVemo", operation(GetFaceIDsVemo)},
    {"GrayscalePSD", operation(GrayscalePSD)},
    {"IsDirectory", operation(IsDirectory)},
    {"ReadVertColorVemo", operation(ReadVertColorVemo)},
    {"convertPSD", operation(convertPSD)},
    {"convertToJPEG", operation(convertToJPEG)},
    {"createThumb", operation(createThumb)},
    {"cropBMP", operation(cropBMP)},
    {"mergeSeamlessPSD", operation(mergeSeamlessPSD)},
    {"swapChannels", operation(swapChannels)},
    {"swapChannelsBMP", operation(swapChannelsBMP)},
    {"swapChannelsPSD", operation(swapChannelsPSD)},
    {"writeOBJfromVemo", operation(writeOBJfromVemo)},
};

// The exports of the library that a host loads.
class Library {
public:
    explicit Library(const char* path) : handle_(::dlopen(path, RTLD_NOW)) {
        if (handle_ == nullptr) throw std::runtime_error(::dlerror());
    }

    float call(const std::string& name, Arguments& arguments) {
        auto* const function = reinterpret_cast<ExportFunction*>(::dlsym(handle_, name.c_str()));
        if (function == nullptr) throw std::runtime_error("no export " + name);
        arguments.resize(3);
        return function(arguments[0].text, arguments[1].number, arguments[2].text, 0, nullptr, 0,
                        nullptr);
    }

    void forget() {
        for (const char* name : {"CloseFolder", "clearUVtilesOutput", "clearUVString"}) {
            Arguments none;
            call(name, none);
        }
        GetFaceIDsVemo("", 1.0);
    }

private:
    void* handle_;
};

std::string status(Library& library, const std::string& name, Arguments& arguments) {
    try {
        float result = 0.0f;
        if (name == "folder") {
            library.forget();
            result = static_cast<float>(::chdir(arguments.at(0).text));
        } else if (const auto found = kOperations.find(name); found != kOperations.end()) {
            result = found->second(arguments);
        } else {
            result = library.call(name, arguments);
        }
        char digits[9];
        std::snprintf(digits, sizeof digits, "%08x", std::bit_cast<std::uint32_t>(result));
        return digits;
    } catch (const std::out_of_range&) {
        return "out_of_range";
    }
}

}  // namespace

int main(int count, char** words) try {
    if (count != 2) throw std::runtime_error("wants the library's path");
    Library library(words[1]);
    std::FILE* const replies = ::fdopen(::dup(STDOUT_FILENO), "w");
    ::dup2(::fileno(std::tmpfile()), STDOUT_FILENO);
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream request(line);
        std::string name;
        request >> name;
        Arguments arguments;
        for (std::string word; request >> word;)
            arguments.push_back(argument(word));
        std::fill(block.begin(), block.end(), kUntouched);
        const std::string result = status(library, name, arguments);
        std::fprintf(replies, "%s %s %s\n", result.c_str(), blockText().c_str(),
                     printedText().c_str());
        std::fflush(replies);
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "compare_server: %s\n", error.what());
    return 1;
}
