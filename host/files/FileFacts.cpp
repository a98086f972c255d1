#include "files/FileFacts.h"

#include "files/Fields.h"

std::uint64_t bytesOf(std::span<const Component> components) {
    std::uint64_t bytes = 0;
    for (const Component& component : components)
        bytes += component.kind.bytes;
    return bytes;
}

FileFacts factsOf(const std::string& path) {
    Fields fields(path);
    FileFacts& facts = fields.facts();
    facts.kind = kindOf(fields.part(0, kHeadBytes), path);
    const FileKindInfo info = infoOf(facts.kind);
    facts.format = info.title;
    if (info.readFields != nullptr) info.readFields(fields);
    return std::move(facts);
}
