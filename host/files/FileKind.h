#pragma once
// The kinds of file that Quillon reads or writes, and how a file shows its kind.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/Bytes.h"
#include "files/MapFormat.h"

class Fields;

// In the order in which a file is compared with them; kUnknown is the last.
enum class FileKind { kTiff, kPsd, kBmp, kExr, kJpeg, kTarga, kVemo, kUnknown };

struct FileKindInfo {
    const char* title;
    std::vector<std::string_view> extensions;  // in lower case, the usual one first
    std::vector<std::string_view> starts;      // with which files begin, if they can be known by it
    void (*readFields)(Fields&);               // null when nothing is known of such files
    std::optional<MapFormat> mapFormat = {};   // of maps that the host writes
};

FileKindInfo infoOf(FileKind kind);

// The bytes of a file that kindOf looks at.
inline constexpr std::size_t kHeadBytes = 36;

// Returns the kind that the first bytes of a file show, that of a mesh by its first chunk. Where they
// show none, the extension decides, so that inspect can say what is wrong with a broken start.
FileKind kindOf(Bytes head, const std::string& path);

// Returns the kind by the extension alone, in upper or lower case.
FileKind kindOfPath(const std::string& path);

// Calls `use` with each kind but kUnknown.
template <typename Use>
void forEachFileKind(Use use) {
    for (int kind = 0; kind < static_cast<int>(FileKind::kUnknown); ++kind)
        use(static_cast<FileKind>(kind));
}
