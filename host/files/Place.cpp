#include "files/Place.h"

#include <algorithm>
#include <optional>

#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

constexpr const char* kCutShort = "cut short by the end of the file";

class Finder {
public:
    Finder(const std::string& path, const FileFacts& facts, std::uint64_t offset)
        : file_(path, "file"), facts_(facts), offset_(offset) {
        if (offset >= file_.size())
            throw Failure(path + " has no byte " + std::to_string(offset) + ": it has " +
                          std::to_string(file_.size()) + " bytes, counted from 0");
    }

    Place find() {
        place_.byte = file_.part(offset_, 1).u8(0);
        const Field* field = smallestField();
        if (field != nullptr && (!field->head.empty() || field->elements.count > 0))
            inField(*field);
        else if (!(isWide(field) && inPixels()))
            inWhole(field);
        return place_;
    }

private:
    // The one that says most, where fields of a broken file overlap.
    const Field* smallestField() const {
        const Field* smallest = nullptr;
        for (const auto* fields : {&facts_.details, &facts_.fields}) {
            for (const Field& field : *fields) {
                const bool contains =
                    offset_ >= field.offset && offset_ - field.offset < field.bytes;
                if (contains && (smallest == nullptr || field.bytes < smallest->bytes))
                    smallest = &field;
            }
        }
        return smallest;
    }

    // Whether samples say more than the field.
    static bool isWide(const Field* field) { return field == nullptr || field->value.empty(); }

    bool inPixels() {
        if (!facts_.picture || !facts_.picture->pixels) return false;
        const PixelLayout& layout = *facts_.picture->pixels;
        const auto found = sampleAt(layout, offset_);
        if (!found) return false;
        if (!found->sample) {
            setValue(found->offset, found->bytes);
            place_.path = {{"part", 0, "padding"}, {"y", found->y}};
            return true;
        }
        const Sample& sample = *found->sample;
        place_.path = {{"part", 0, "pixels"},
                       {"x", sample.x},
                       {"y", sample.y},
                       {"channel", 0, channelName(layout.channels, sample.channel)}};
        setNumber(found->offset, layout.sample);
        return true;
    }

    void inField(const Field& field) {
        setPart(field);
        std::uint64_t offset = field.offset;
        if (inComponents(field.head, offset)) return;
        const Elements& elements = field.elements;
        const std::uint64_t groupBytes = bytesOf(elements.components);
        const std::uint64_t elementBytes = groupBytes * elements.groups;
        if (elementBytes == 0 || (offset_ - offset) / elementBytes >= elements.count) return;
        const std::uint64_t element = (offset_ - offset) / elementBytes;
        offset += element * elementBytes;
        const std::uint64_t group = (offset_ - offset) / groupBytes;
        offset += group * groupBytes;
        place_.path.push_back({elements.name, element});
        if (elements.group != nullptr) place_.path.push_back({elements.group, group});
        inComponents(elements.components, offset);
    }

    // Whether the byte is in one of these, the first of which is at `offset`; moves past them.
    bool inComponents(std::span<const Component> components, std::uint64_t& offset) {
        for (const Component& component : components) {
            if (offset_ - offset >= component.kind.bytes) {
                offset += component.kind.bytes;
                continue;
            }
            if (component.name != nullptr) place_.path.push_back({"component", 0, component.name});
            setNumber(offset, component.kind);
            return true;
        }
        return false;
    }

    void inWhole(const Field* field) {
        if (field == nullptr) {
            place_.path = {{"part", 0, "no field that Quillon knows"}};
            setValue(offset_, 1);
            return;
        }
        setPart(*field);
        place_.value = field->offset + field->bytes > facts_.bytes ? kCutShort : field->value;
    }

    void setPart(const Field& field) {
        place_.path = {{"part", 0, field.part.empty() ? field.name : field.part}};
        setValue(field.offset, field.bytes);
    }

    void setValue(std::uint64_t offset, std::uint64_t bytes) {
        place_.offset = offset;
        place_.bytes = bytes;
    }

    void setNumber(std::uint64_t offset, NumberKind kind) {
        setValue(offset, kind.bytes);
        const Bytes bytes = file_.part(offset, kind.bytes);
        place_.value = bytes.size < kind.bytes ? kCutShort : textIn(bytes, kind);
    }

    InputFile file_;
    const FileFacts& facts_;
    const std::uint64_t offset_;
    Place place_{};
};

std::string textOf(const Step& step) {
    return step.word.empty() ? step.key + (' ' + std::to_string(step.number)) : step.word;
}

}  // namespace

Place placeOf(const std::string& path, const FileFacts& facts, std::uint64_t offset) {
    return Finder(path, facts, offset).find();
}

std::string textOf(const Place& place) {
    std::string text;
    for (const Step& step : place.path)
        text += (text.empty() ? "" : ", ") + textOf(step);
    return place.value.empty() ? text : text + " = " + place.value;
}
