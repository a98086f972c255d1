#include "terminal/Colour.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

bool hasColours(std::FILE* stream) {
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return ::isatty(::fileno(stream)) == 1 && (noColour == nullptr || *noColour == '\0') &&
           terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::string painted(std::FILE* stream, const char* colour, const std::string& text) {
    return hasColours(stream) ? colour + text + "\x1B[0m" : text;
}

}  // namespace

std::string inGreen(std::FILE* stream, const std::string& text) {
    return painted(stream, "\x1B[32m", text);
}

std::string inRed(std::FILE* stream, const std::string& text) {
    return painted(stream, "\x1B[31m", text);
}

void printError(const std::string& sentence) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s %s\n", inRed(stderr, "quillon:").c_str(), sentence.c_str());
}
