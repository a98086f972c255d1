#pragma once
// The fields of a file's headers, for a person who looks for a wrong byte, and what the exports do not
// expect in them. A broken file shows what it has.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files/FileKind.h"
#include "files/PixelLayout.h"

struct Component {
    const char* name;
    NumberKind kind;
};

std::uint64_t bytesOf(std::span<const Component> components);

// Equal elements one after the other, each of `groups` groups of components. A face UV, for example,
// is four corners of u and v.
struct Elements {
    const char* name = nullptr;  // such as "face"
    std::uint64_t count = 0;
    const char* group = nullptr;  // such as "corner"; null when there is one group
    std::size_t groups = 1;
    std::span<const Component> components = {};
};

struct Field {
    std::uint64_t offset;
    std::uint64_t bytes;
    std::string name;
    std::string value;
    std::string part = {};                 // what inspect --at calls it; empty: its name
    std::span<const Component> head = {};  // what it starts with
    Elements elements = {};                // what follows
};

// What a file says about the image in it; 0 for what it does not say.
struct PictureFacts {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t channels = 0;
    std::int64_t depth = 0;                      // bits per sample
    std::optional<PixelLayout> pixels = {};      // where the samples are, if they need no decoding
    std::vector<std::string> channelNames = {};  // of an OpenEXR file, in its order
};

// An export that accepts a file and makes a wrong image of it; with arguments that end so, where the
// others do not matter.
struct Misreading {
    const char* name;
    const char* arguments = "";
};

// Something that the exports do not expect, and what to do about it.
struct Note {
    std::string sentence;
    std::span<const Misreading> misreadings = {};
};

struct FileFacts {
    FileKind kind = FileKind::kUnknown;
    std::string format;  // in words
    std::uint64_t bytes = 0;
    std::optional<PictureFacts> picture;
    std::vector<Field> fields;   // in the order of the file; the first thousand
    std::vector<Field> details;  // fields that only inspect --at shows
    std::vector<Note> notes;
};

// Reads only headers, however long the file is. Throws Failure for what is no file or cannot be read.
FileFacts factsOf(const std::string& path);
