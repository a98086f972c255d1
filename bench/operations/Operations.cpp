#include "Operations.h"

#include <cstdint>
#include <string_view>

#include "bmp/BmpOps.h"
#include "mesh/VemoOps.h"
#include "psd/PsdOps.h"

namespace {

struct Entry {
    std::string_view name;
    Operation* operation;
};

constexpr Entry kOperations[] = {
    {"GrayscalePSD",
     [](const char* text, double value, char* buffer) {
         return GrayscalePSD(text, buffer, static_cast<std::int32_t>(value));
     }},
    {"convertPSD",
     [](const char* text, double value, char*) {
         return convertPSD(text, static_cast<float>(value), /*toColour=*/0.0f, /*invert=*/false);
     }},
    {"mergeSeamlessPSD", [](const char* text, double value,
                            char* buffer) { return mergeSeamlessPSD(buffer, text, value != 0.0); }},
    {"createThumb", [](const char* text, double value,
                       char*) { return createThumb(text, static_cast<int>(value)); }},
    // A band of `value` columns, from column value / 2 on.
    {"cropBMP",
     [](const char* text, double value, char* buffer) {
         const auto width = static_cast<std::int32_t>(value);
         return cropBMP(text, buffer, 3 * (width / 2), width);
     }},
    {"ReadVertColorVemo",
     [](const char* text, double, char* buffer) { return ReadVertColorVemo(text, buffer); }},
    {"GetFaceIDsVemo",
     [](const char* text, double value, char*) { return GetFaceIDsVemo(text, value); }},
    {"writeOBJfromVemo",
     [](const char* text, double, char* buffer) { return writeOBJfromVemo(text, buffer); }},
};

}  // namespace

Operation* findOperation(const char* name) {
    for (const Entry& entry : kOperations) {
        if (entry.name == name) return entry.operation;
    }
    return nullptr;
}
