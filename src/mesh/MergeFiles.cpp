// Two meshes in one file: how the host gets the creases of one mesh into another.

#include "files/FileWriter.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"

namespace {

// What a mesh loses at its end: all but the first two bytes of its closing header.
constexpr std::size_t kDroppedBytes = kChunkHeaderBytes - 2;

}  // namespace

float mergeFiles(const char* first_path, char* second_path) {
    const FileBytes second = loadFile(second_path);
    if (second.data == nullptr) return vemo_status::kMergeTargetNotOpened;
    const FileBytes first = loadFile(first_path);
    if (first.data == nullptr) return vemo_status::kMergedNotOpened;
    if (first.size < kDroppedBytes || second.size < kDroppedBytes)
        return vemo_status::kChunkMissing;

    FileWriter merged(File::create(second_path));
    if (!merged.isOpen()) return vemo_status::kMergeTargetNotCreated;
    if (merged.append(second.data.get(), second.size - kDroppedBytes))
        merged.append(first.data.get(), first.size - kDroppedBytes);
    return vemo_status::kOk;
}
