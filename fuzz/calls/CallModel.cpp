#include "calls/CallModel.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "harness/Target.h"

const Export kAllExports[kExports] = {
    {"Version", Version, Effect::kNothing, Buffer::kNotRead},
    {"CreateFolder", CreateFolder, Effect::kPredicted, Buffer::kNotRead},
    {"GetPublicFolder", GetPublicFolder, Effect::kNothing, Buffer::kBlock},
    {"CheckFolder", CheckFolder, Effect::kPredicted, Buffer::kNotRead},
    {"OpenFolder", OpenFolder, Effect::kPredicted, Buffer::kNotRead},
    {"GetFile", GetFile, Effect::kNothing, Buffer::kBlock},
    {"CloseFolder", CloseFolder, Effect::kNothing, Buffer::kNotRead},
    {"EmptyFolder", EmptyFolder, Effect::kPredicted, Buffer::kNotRead},
    {"FileDelete", FileDelete, Effect::kPredicted, Buffer::kNotRead},
    {"FileCopyTo", FileCopyTo, Effect::kPredicted, Buffer::kPath},
    {"FileRename", FileRename, Effect::kPredicted, Buffer::kPath},
    {"GetString", GetString, Effect::kNothing, Buffer::kBlock},
    {"clearUVtilesOutput", clearUVtilesOutput, Effect::kNothing, Buffer::kNotRead},
    {"setUVtilesOutput", setUVtilesOutput, Effect::kNothing, Buffer::kNotRead},
    {"getUVTile", getUVTile, Effect::kNothing, Buffer::kBlock},
    {"getUVGroups", getUVGroups, Effect::kNothing, Buffer::kNotRead},
    {"getUVString", getUVString, Effect::kNothing, Buffer::kBlock},
    {"clearUVString", clearUVString, Effect::kNothing, Buffer::kNotRead},
    {"getUVs", getUVs, Effect::kTiles, Buffer::kPath},
    {"getUVsMask", getUVsMask, Effect::kTiles, Buffer::kPath},
    {"mergeCrease", mergeCrease, Effect::kBuffer, Buffer::kPath},
    {"mergeMapsTIF", mergeMapsTIF, Effect::kBuffer, Buffer::kPath},
    {"mergeMapsPSD", mergeMapsPSD, Effect::kBuffer, Buffer::kPath},
    {"mergeMapsBMP", mergeMapsBMP, Effect::kBuffer, Buffer::kPath},
    {"swapRGBTIF", swapRGBTIF, Effect::kText, Buffer::kNotRead},
    {"swapRGBPSD", swapRGBPSD, Effect::kText, Buffer::kNotRead},
    {"swapRGBBMP", swapRGBBMP, Effect::kText, Buffer::kNotRead},
    {"convertTIFF16", convertTIFF16, Effect::kBuffer, Buffer::kPath},
    {"convertTIFFSingle", convertTIFFSingle, Effect::kBuffer, Buffer::kPath},
    {"getScale", getScale, Effect::kNothing, Buffer::kNotRead},
    {"saveAsTarga", saveAsTarga, Effect::kBuffer, Buffer::kPath},
    {"saveAsJpeg", saveAsJpeg, Effect::kBuffer, Buffer::kPath},
    {"CreateThumbnailBMP", CreateThumbnailBMP, Effect::kText, Buffer::kNotRead},
    {"OpenEXR", OpenEXR, Effect::kNothing, Buffer::kNotRead},
};

namespace {

constexpr float kDone = 0.0f;
constexpr float kFailed = -1.0f;
constexpr float kListingExhausted = -3.0f;
constexpr float kFirstTileNotWritten = 1501.0f;

bool is(const Call& call, std::string_view name) {
    return call.function.name == name;
}

bool hasDot(const std::string& name) {
    return name.find('.') != std::string::npos;
}

const Entry* find(const Entries& entries, const std::optional<std::string>& name) {
    const auto found = name ? entries.find(*name) : entries.end();
    return found == entries.end() ? nullptr : &found->second;
}

bool isThisFolder(const std::optional<std::string>& name) {
    return name == ".";
}

// Whether the path is that of an entry which is there or can be made.
bool isInFolder(const std::optional<std::string>& name) {
    return name && !isThisFolder(name) && name->find('/') == std::string::npos;
}

bool isFolder(const Entries& entries, const std::optional<std::string>& name) {
    const Entry* const entry = find(entries, name);
    return isThisFolder(name) || (entry != nullptr && entry->isFolder);
}

float createFolder(const Call& call, Entries& entries) {
    if (!isInFolder(call.text) || find(entries, call.text) != nullptr) return kFailed;
    entries[*call.text] = {true};
    return kDone;
}

float openFolder(const Call& call, const Entries& entries) {
    return isFolder(entries, call.text) ? kDone : kFailed;
}

float emptyFolder(const Call& call, Entries& entries) {
    if (!isFolder(entries, call.text)) return kFailed;
    if (isThisFolder(call.text))
        std::erase_if(entries, [](const auto& entry) { return hasDot(entry.first); });
    return kDone;
}

float deleteFile(const Call& call, Entries& entries) {
    return call.text && entries.erase(*call.text) == 1 ? kDone : kFailed;
}

// The target goes first, even when it is the source.
float copyFile(const Call& call, Entries& entries) {
    if (!call.text || !call.buffer) return kFailed;
    entries.erase(*call.buffer);
    const Entry* const source = find(entries, call.text);
    if (source == nullptr || source->isFolder || !isInFolder(call.buffer)) return kFailed;
    entries[*call.buffer] = Entry(*source);
    return kDone;
}

float renameFile(const Call& call, Entries& entries) {
    const Entry* const source = find(entries, call.text);
    if (source == nullptr || !isInFolder(call.buffer)) return kFailed;
    const Entry* const target = find(entries, call.buffer);
    if (source == target) return kDone;
    if (target != nullptr && target->isFolder != source->isFolder) return kFailed;
    entries[*call.buffer] = Entry(*source);
    entries.erase(*call.text);
    return kDone;
}

// Changes the entries as the call should and returns its status.
float predict(const Call& call, Entries& entries) {
    if (is(call, "CreateFolder")) return createFolder(call, entries);
    if (is(call, "CheckFolder") || is(call, "OpenFolder")) return openFolder(call, entries);
    if (is(call, "EmptyFolder")) return emptyFolder(call, entries);
    if (is(call, "FileDelete")) return deleteFile(call, entries);
    if (is(call, "FileCopyTo")) return copyFile(call, entries);
    return renameFile(call, entries);
}

std::set<std::string> namesThatChanged(const Entries& before, const Entries& after) {
    std::set<std::string> names;
    for (const auto& [name, entry] : before) {
        const Entry* const now = find(after, name);
        if (now == nullptr || !(*now == entry)) names.insert(name);
    }
    for (const auto& [name, entry] : after) {
        if (!before.contains(name)) names.insert(name);
    }
    return names;
}

// A tile's file has the name of the tile in place of the extension.
bool isTileOf(const std::string& name, const std::string& path) {
    return name.starts_with(path.substr(0, path.rfind('.'))) && name.ends_with(".Vemo");
}

bool mayChange(const Call& call, const std::string& name) {
    switch (call.function.effect) {
        case Effect::kText:
            return call.text == name;
        case Effect::kBuffer:
            return call.buffer == name;
        case Effect::kTiles:
            return call.buffer && isTileOf(name, *call.buffer);
        default:
            return false;
    }
}

// Tiles that were written before one that could not be stay; a Targa's head is written first.
bool mayFailHalfway(const Call& call) {
    return call.function.effect == Effect::kTiles || is(call, "saveAsTarga");
}

void checkFiles(const Call& call, const Result& result, const Entries& before,
                const Entries& after) {
    if (call.function.effect == Effect::kPredicted) {
        Entries expected = before;
        Case::expect(result.status == predict(call, expected), "a file service returns its status");
        Case::expect(after == expected, "a file service leaves the files that it should");
        return;
    }
    const std::set<std::string> changed = namesThatChanged(before, after);
    for (const std::string& name : changed) {
        Case::expect(mayChange(call, name), "a call changes no other file than its own");
        Case::expect(after.contains(name) && !find(after, name)->isFolder,
                     "a file that a call changes is there afterwards");
    }
    if (result.status != kDone && !mayFailHalfway(call))
        Case::expect(changed.empty(), "a refused call changes no file");
}

}  // namespace

void CallModel::check(const Call& call, const Result& result, const Entries& before,
                      const Entries& after) {
    const bool lacksDot = call.buffer && !hasDot(*call.buffer);
    const bool isLayout = call.value == 1.0 || call.value == 3.0 || call.value == 4.0;
    Case::expect(result.threw == (is(call, "convertTIFF16") && call.text && lacksDot && isLayout),
                 "only a 16-bit map without an extension ends in an exception");
    checkFiles(call, result, before, after);
    checkState(call, result);
}

void CallModel::checkState(const Call& call, const Result& result) {
    if (is(call, "OpenFolder")) isListing_ = result.status == kDone;
    if (is(call, "CheckFolder")) isListing_ = false;
    if (is(call, "GetFile")) {
        const bool isRefused = !isListing_ || !call.buffer;
        Case::expect(isRefused == (result.status == kFailed), "GetFile needs a listing");
        Case::expect(isRefused || (result.status == (result.text ? kDone : kListingExhausted)),
                     "GetFile gives a name, or says that there is none");
    }
    if (is(call, "CloseFolder")) {
        Case::expect((result.status == kDone) == isListing_, "CloseFolder needs a listing");
        isListing_ = false;
    }
    if (is(call, "clearUVString")) tiles_ = 0;
    if (call.function.effect == Effect::kTiles && call.text && call.buffer) {
        const bool isDone = result.status >= 0.0f && result.status < kFirstTileNotWritten;
        tiles_.reset();
        if (isDone) tiles_ = static_cast<std::size_t>(result.status);
    }
    if (is(call, "getUVString") && tiles_ && call.buffer) {
        const bool hasName = call.value > -1.0 && call.value < static_cast<double>(*tiles_);
        Case::expect(
            result.text.has_value() == (hasName || (*tiles_ > 0 && call.value != call.value)),
            "each tile has a name, and nothing else has");
    }
    Case::expect(!is(call, "Version") || result.status == 48.0f, "the version is 48");
}
