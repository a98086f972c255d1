// The boundary: each export checks its arguments, turns `value` into the integer that the operation
// wants, calls one operation and returns its status.

#include "export/Quillon.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "bmp/BmpOps.h"
#include "bytes/Numbers.h"
#include "bytes/Text.h"
#include "encoders/ExrRange.h"
#include "encoders/JpegOps.h"
#include "encoders/TargaOps.h"
#include "files/CocoaFileBrowser.h"
#include "files/FileOps.h"
#include "files/FolderStream.h"
#include "mesh/VemoOps.h"
#include "psd/PsdOps.h"
#include "tiff/TiffOps.h"

using namespace quillon_status;

namespace {

// The open listing, or null. Set by OpenFolder, read on by GetFile, ended by CloseFolder and by
// CheckFolder. A second OpenFolder ends the first listing, which nobody could reach any more.
FolderStream folder;

// Runs an operation for the host, which must never see an exception: running out of memory becomes
// the status `failed`.
template <typename Operation>
float guarded(float failed, Operation operation) noexcept {
    try {
        return operation();
    } catch (...) {
        return failed;
    }
}

float doneIf(bool success) {
    return success ? kOk : kFailed;
}

int namingMode(double value) {
    return std::clamp(saturatedInt(value), 0, 3);
}

// The three channel swaps take the same values: strictly between 0 and 4.
bool isSwapValue(double value) {
    return value > 0.0 && value < 4.0;
}

bool isTargetLayout(double value) {
    return value == 1.0 || value == 3.0 || value == 4.0;
}

bool isChannelCount(double value) {
    return value == 1.0 || value == 3.0;
}

int jpegQuality(double value) {
    return value >= 0.0 && value <= 100.0 ? saturatedInt(value) : 50;
}

// Whether a map is wanted as PSD. Throws std::out_of_range for a path without a dot.
bool namesPsd(const char* path) {
    const std::string extension = FileNameExtract(path, 4);
    return extension.find("psd") != std::string::npos || extension.find("PSD") != std::string::npos;
}

}  // namespace

float Version(const char*, double, char*, int, char*, int, char**) {
    return kVersion;
}

float CreateFolder(const char* text, double, char*, int, char*, int, char**) {
    return guarded(kFailed, [&] { return doneIf(createFolder(text)); });
}

float GetPublicFolder(const char*, double, char* buffer1, int, char*, int, char**) {
    return guarded(kNoPublicFolder, [&] {
        const std::unique_ptr<char[]> path(getSharedFolder());
        if (path == nullptr || buffer1 == nullptr) return kNoPublicFolder;
        copyText(buffer1, path.get());
        return kPublicFolderCopied;
    });
}

float CheckFolder(const char* text, double, char*, int, char*, int, char**) {
    folder = openFolder(text);
    const bool opened = folder != nullptr;
    folder.reset();
    return doneIf(opened);
}

float OpenFolder(const char* text, double, char*, int, char*, int, char**) {
    folder = openFolder(text);
    return doneIf(folder != nullptr);
}

float GetFile(const char*, double, char* buffer1, int, char*, int, char**) {
    if (folder == nullptr || buffer1 == nullptr) return kFailed;
    const dirent* entry = ::readdir(folder.get());
    if (entry == nullptr) return kListingExhausted;
    copyText(buffer1, entry->d_name);
    return kOk;
}

float CloseFolder(const char*, double, char*, int, char*, int, char**) {
    if (folder == nullptr) return kFailed;
    folder.reset();
    return kOk;
}

float EmptyFolder(const char* text, double, char*, int, char*, int, char**) {
    if (text == nullptr) return kFailed;
    return guarded(kFailed, [&] { return doneIf(ClearFolder(text) == 1); });
}

float FileDelete(const char* text, double, char*, int, char*, int, char**) {
    if (text == nullptr) return kFailed;
    return static_cast<float>(std::remove(text));
}

float FileCopyTo(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kFailed;
    return guarded(kFailed, [&] { return doneIf(copyFile(text, buffer1)); });
}

float FileRename(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kFailed;
    return static_cast<float>(std::rename(text, buffer1));
}

float GetString(const char* text, double value, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kFailed;
    const std::size_t wanted = value >= 0.0 && value <= 10.0 ? static_cast<std::size_t>(value) : 5;
    const std::size_t length = std::strlen(text);
    const std::size_t start = std::min(wanted, length);
    std::memmove(buffer1, text + start, length - start + 1);
    return kOk;
}

float clearUVtilesOutput(const char*, double, char*, int, char*, int, char**) {
    clearUVtilesOut();
    return kOk;
}

float setUVtilesOutput(const char* text, double, char*, int, char*, int, char**) {
    if (text == nullptr) return kRefused;
    return guarded(kRefused, [&] { return setUVtilesOut(text); });
}

float getUVTile(const char* text, double value, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return GetUVTile(text, buffer1, namingMode(value)); });
}

float getUVGroups(const char* text, double, char*, int, char*, int, char**) {
    if (text == nullptr) return kRefused;
    return guarded(kRefused, [&] { return GetUVGroup(text); });
}

float getUVString(const char*, double value, char* buffer1, int, char*, int, char**) {
    getUVTileString(saturatedInt(value), buffer1);
    return kOk;
}

float clearUVString(const char*, double, char*, int, char*, int, char**) {
    clearUVTileString();
    return kOk;
}

float getUVs(const char* text, double value, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return GetUVsFromVemo(text, buffer1, namingMode(value)); });
}

float getUVsMask(const char* text, double value, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return GetUVsFromVemoMASK(text, buffer1, namingMode(value)); });
}

float mergeCrease(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return mergeFiles(text, buffer1); });
}

float mergeMapsTIF(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return mergeTiff(text, buffer1); });
}

float mergeMapsPSD(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return mergePSD(text, buffer1); });
}

float mergeMapsBMP(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return mergeBMP(text, buffer1); });
}

float swapRGBTIF(const char* text, double value, char*, int, char*, int, char**) {
    if (text == nullptr || !isSwapValue(value)) return kRefused;
    return guarded(kRefused, [&] { return swapChannels(text, saturatedInt(value)); });
}

float swapRGBPSD(const char* text, double value, char*, int, char*, int, char**) {
    if (text == nullptr || !isSwapValue(value)) return kRefused;
    return guarded(kRefused, [&] { return swapChannelsPSD(text, saturatedInt(value)); });
}

float swapRGBBMP(const char* text, double value, char*, int, char*, int, char**) {
    if (text == nullptr || !isSwapValue(value)) return kRefused;
    return guarded(kRefused, [&] { return swapChannelsBMP(text, saturatedInt(value)); });
}

float convertTIFF16(const char* text, double value, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr || !isTargetLayout(value)) return kRefused;
    int isPsd = 0;
    try {
        isPsd = namesPsd(buffer1) ? 1 : 0;
    } catch (const std::bad_alloc&) {
        return kRefused;  // std::out_of_range, for a path without a dot, does reach the host
    }
    return guarded(kRefused,
                   [&] { return convertTiff(text, buffer1, saturatedInt(value), isPsd); });
}

float convertTIFFSingle(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kFailed;
    return guarded(kFailed, [&] { return singleChannelTiff(text, buffer1); });
}

float getScale(const char* text, double value, char*, int, char*, int, char**) {
    if (text == nullptr || !isChannelCount(value)) return kRefused;
    return guarded(kRefused, [&] { return getScaleTiff(text, saturatedInt(value)); });
}

float saveAsTarga(const char* text, double, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return convertToTarga(text, buffer1); });
}

float saveAsJpeg(const char* text, double value, char* buffer1, int, char*, int, char**) {
    if (text == nullptr || buffer1 == nullptr) return kRefused;
    return guarded(kRefused, [&] { return convertToJPEG(text, buffer1, jpegQuality(value)); });
}

float CreateThumbnailBMP(const char* text, double value, char*, int, char*, int, char**) {
    return guarded(kRefused, [&] { return createBMPthumb(text, saturatedInt(value)); });
}

float OpenEXR(const char* text, double, char*, int, char*, int, char**) {
    return guarded(kRefused, [&] { return OpenEXR(text); });
}

char* get_substr(char* text, int start) {
    return text + start;
}

void Quillon::HelloWorld(const char* text) {
    QuillonPriv().HelloWorldPriv(text);
}

void QuillonPriv::HelloWorldPriv(const char* text) {
    if (text == nullptr) return;
    std::puts(text);
    std::fflush(stdout);
}
