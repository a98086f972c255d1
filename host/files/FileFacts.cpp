#include "files/FileFacts.h"

#include "files/Fields.h"

namespace {

void readFields(Fields& fields, FileKind kind) {
    switch (kind) {
        case FileKind::kTiff:
            return readTiff(fields);
        case FileKind::kPsd:
            return readPsd(fields);
        case FileKind::kBmp:
            return readBmp(fields);
        case FileKind::kExr:
            return readExr(fields);
        case FileKind::kJpeg:
            return readJpeg(fields);
        case FileKind::kTarga:
            return readTarga(fields);
        case FileKind::kVemo:
            return readVemo(fields);
        case FileKind::kUnknown:
            return;
    }
}

}  // namespace

std::uint64_t bytesOf(std::span<const Component> components) {
    std::uint64_t bytes = 0;
    for (const Component& component : components)
        bytes += bytesOf(component.kind);
    return bytes;
}

FileFacts factsOf(const std::string& path) {
    Fields fields(path);
    FileFacts& facts = fields.facts();
    facts.kind = kindOf(fields.part(0, kHeadBytes), path);
    facts.format = infoOf(facts.kind).title;
    readFields(fields, facts.kind);
    return std::move(facts);
}
