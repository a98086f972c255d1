// Two meshes in one file: how the host gets the creases of one mesh into another.

#include "files/FileWriter.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"

namespace {

// What a mesh loses at its end, the repeated byte included: all but the first two bytes of its
// closing header.
constexpr std::size_t kDroppedBytes = kChunkHeaderBytes - 1;

}  // namespace

float mergeFiles(const char* first_path, char* second_path) {
    VemoFile second(second_path);
    if (!second.keep()) return vemo_status::kMergeTargetNotOpened;
    VemoFile first(first_path);
    if (!first.keep()) return vemo_status::kMergedNotOpened;
    if (first.size() < kDroppedBytes || second.size() < kDroppedBytes)
        return vemo_status::kChunkMissing;

    FileWriter merged(File::create(second_path));
    if (!merged.isOpen()) return vemo_status::kMergeTargetNotCreated;
    if (merged.append(second.data(), second.size() - kDroppedBytes))
        merged.append(first.data(), first.size() - kDroppedBytes);
    return vemo_status::kOk;
}
