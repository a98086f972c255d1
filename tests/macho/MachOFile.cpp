#include "macho/MachOFile.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "bytes/Bytes.h"

namespace {

constexpr std::uint32_t kUniversal = 0xCAFE'BABE;  // big-endian, as all of the universal header
constexpr std::uint32_t kMagic64 = 0xFEED'FACF;
constexpr std::uint32_t kDylib = 6;
constexpr std::size_t kHeaderBytes = 32;
constexpr std::size_t kSegmentBytes = 72;
constexpr std::size_t kSectionBytes = 80;
constexpr std::uint64_t kPointerBytes = 8;

// Far more than our library needs; a damaged file cannot ask for more.
constexpr std::uint64_t kMostMemory = std::uint64_t{1} << 30;

constexpr std::uint32_t kSegmentCommand = 0x19;
constexpr std::uint32_t kDyldInfoCommand = 0x8000'0022;
constexpr std::uint32_t kChainedFixupsCommand = 0x8000'0034;
constexpr std::uint32_t kReexportCommand = 0x8000'001F;

constexpr std::uint32_t kProtectWrite = 2;
constexpr std::uint32_t kProtectExecute = 4;
constexpr std::uint32_t kSegmentReadOnly = 0x10;

constexpr std::uint8_t kInitialiserPointers = 0x9;
constexpr std::uint8_t kThreadLocalRegular = 0x11;
constexpr std::uint8_t kThreadLocalZeros = 0x12;
constexpr std::uint8_t kThreadLocalVariables = 0x13;

[[noreturn]] void refuse(const std::string& why) {
    throw std::runtime_error("Mach-O file: " + why);
}

void demand(bool holds, const char* otherwise) {
    if (!holds) refuse(otherwise);
}

Bytes partOf(const std::vector<std::uint8_t>& bytes, std::uint64_t start, std::uint64_t size) {
    demand(start <= bytes.size() && size <= bytes.size() - start, "a table outside the file");
    return {bytes.data() + start, static_cast<std::size_t>(size)};
}

// Reads on through a part of the file, byte by byte; beyond the part's end it refuses.
class Cursor {
public:
    explicit Cursor(Bytes part) : part_(part) {}

    bool atEnd() const { return at_ >= part_.size; }
    void moveTo(std::uint64_t at) { at_ = at; }
    std::uint64_t position() const { return at_; }

    std::uint8_t byte() {
        const std::uint8_t value = part_.u8(at_++);
        demand(!part_.overran, "a table ends too early");
        return value;
    }

    // Seven bits a byte, the lowest first; the highest bit is set while more follow.
    std::uint64_t number() {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const std::uint8_t part = byte();
            demand(shift < 63 || (shift == 63 && part <= 1), "a number has too many bits");
            value |= std::uint64_t{part & 0x7Fu} << shift;
            if (part < 0x80) return value;
        }
    }

    std::string text() {
        std::string read;
        while (const std::uint8_t letter = byte())
            read += static_cast<char>(letter);
        return read;
    }

private:
    Bytes part_;
    std::uint64_t at_ = 0;
};

// A header of fixed size and its fields.
class Fields {
public:
    explicit Fields(Bytes header) : start_(header.data) {}
    std::uint32_t u32(std::size_t at) const { return loadLe32(start_ + at); }
    std::uint64_t u64(std::size_t at) const { return loadLe64(start_ + at); }
    std::string name(std::size_t at) const {
        const std::uint8_t* first = start_ + at;
        return {first, std::find(first, first + 16, std::uint8_t{0})};
    }

private:
    const std::uint8_t* start_;
};

std::vector<std::uint8_t> sliceOf(const std::vector<std::uint8_t>& file, std::uint32_t cpu) {
    Bytes universal{file.data(), file.size()};
    if (universal.be32(0) != kUniversal) return file;
    const std::uint32_t count = universal.be32(4);
    for (std::uint64_t i = 0; i < count && !universal.overran; ++i) {
        const std::uint64_t entry = 8 + 20 * i;
        if (universal.be32(entry) != cpu) continue;
        const std::uint64_t offset = universal.be32(entry + 8);
        const std::uint64_t size = universal.be32(entry + 12);
        demand(universal.holds(offset, size, 1), "the slice reaches beyond the file");
        const auto first = file.begin() + static_cast<std::ptrdiff_t>(offset);
        return {first, first + static_cast<std::ptrdiff_t>(size)};
    }
    refuse("no slice for this processor");
}

// Reads the tables of one library.
class Reader {
public:
    Reader(std::vector<std::uint8_t> slice, std::uint32_t cpu) {
        file_.bytes = std::move(slice);
        const Fields header(partOf(file_.bytes, 0, kHeaderBytes));
        demand(header.u32(0) == kMagic64 && header.u32(4) == cpu, "no slice for this processor");
        demand(header.u32(12) == kDylib, "not a dynamic library");
        readCommands(header.u32(16));
        demand(hasDyldInfo_, "no tables for the loader");
    }

    MachOFile take() { return std::move(file_); }

private:
    void readCommands(std::uint32_t count) {
        std::uint64_t at = kHeaderBytes;
        for (std::uint32_t i = 0; i < count; ++i) {
            const Fields command(partOf(file_.bytes, at, 8));
            const std::uint32_t size = command.u32(4);
            demand(size >= 8, "a load command without a size");
            readCommand(command.u32(0), at, size);
            at += size;
        }
    }

    // Segments precede the tables that refer to them, as every linker writes them.
    void readCommand(std::uint32_t kind, std::uint64_t at, std::uint32_t size) {
        demand(kind != kChainedFixupsCommand, "chained fixups");
        demand(kind != kReexportCommand, "a re-exported library");
        if (kind == kSegmentCommand) readSegment(at, size);
        if (kind == kDyldInfoCommand) readDyldInfo(Fields(partOf(file_.bytes, at, 48)));
    }

    void readSegment(std::uint64_t at, std::uint32_t size) {
        const Fields fields(partOf(file_.bytes, at, kSegmentBytes));
        const MachOSegment segment{
            .name = fields.name(8),
            .memory = {fields.u64(24), fields.u64(32)},
            .fileOffset = fields.u64(40),
            .fileSize = fields.u64(48),
            .isWritable = (fields.u32(60) & kProtectWrite) != 0,
            .isExecutable = (fields.u32(60) & kProtectExecute) != 0,
            .isFixedUpOnce = (fields.u32(68) & kSegmentReadOnly) != 0,
        };
        demand(segment.memory.address == file_.memorySize(), "segments with gaps");
        demand(segment.memory.size <= kMostMemory - file_.memorySize(), "too large");
        demand(segment.fileSize <= segment.memory.size, "a segment longer than its memory");
        const Bytes bytes{file_.bytes.data(), file_.bytes.size()};
        demand(bytes.holds(segment.fileOffset, segment.fileSize, 1), "a segment outside the file");
        file_.segments.push_back(segment);

        const std::uint64_t sections = fields.u32(64);
        demand(sections <= (size - kSegmentBytes) / kSectionBytes, "sections beyond their command");
        for (std::uint64_t i = 0; i < sections; ++i)
            readSection(
                Fields(partOf(file_.bytes, at + kSegmentBytes + i * kSectionBytes, kSectionBytes)));
    }

    void readSection(const Fields& fields) {
        const MachORange memory{fields.u64(32), fields.u64(40)};
        const MachORange& around = file_.segments.back().memory;
        demand(memory.address >= around.address && memory.address - around.address <= around.size &&
                   memory.size <= around.size - (memory.address - around.address),
               "a section outside its segment");
        if (fields.name(0) == "__unwind_info") file_.unwindWords = memory;
        if (fields.name(0) == "__eh_frame") file_.unwindFrames = memory;
        const auto kind = static_cast<std::uint8_t>(fields.u32(64));
        if (kind == kThreadLocalVariables) file_.threadVariables = memory;
        if (kind == kThreadLocalRegular) file_.threadValues = memory;
        if (kind == kThreadLocalZeros) extendThreadValues(memory);
        if (kind != kInitialiserPointers) return;
        for (std::uint64_t i = 0; i < memory.size / kPointerBytes; ++i)
            file_.initialisers.push_back(memory.address + i * kPointerBytes);
    }

    // The zeros follow the values.
    void extendThreadValues(const MachORange& zeros) {
        MachORange& values = file_.threadValues;
        if (values.size == 0) values.address = zeros.address;
        values.size = zeros.address + zeros.size - values.address;
    }

    void readDyldInfo(const Fields& info) {
        hasDyldInfo_ = true;
        demand(info.u32(28) == 0, "weak symbols");
        readRebases(Cursor(partOf(file_.bytes, info.u32(8), info.u32(12))));
        readBinds(Cursor(partOf(file_.bytes, info.u32(16), info.u32(20))), false);
        readBinds(Cursor(partOf(file_.bytes, info.u32(32), info.u32(36))), true);
        readExports(Cursor(partOf(file_.bytes, info.u32(40), info.u32(44))));
    }

    // The place that the programs below advance: a segment and an offset in it, which wraps.
    struct Place {
        std::size_t segment = 0;
        std::uint64_t offset = 0;
    };

    std::uint64_t pointerAt(const Place& place) const {
        demand(place.segment < file_.segments.size(), "a pointer in no segment");
        const MachOSegment& segment = file_.segments[place.segment];
        demand(segment.isWritable && segment.memory.size >= kPointerBytes &&
                   place.offset <= segment.memory.size - kPointerBytes,
               "a pointer where none can be set");
        return segment.memory.address + place.offset;
    }

    // Calls `set` for `count` pointers, `step` bytes apart. Together they cannot be more than fit into
    // the file.
    template <typename Set>
    void repeat(Place& place, std::uint64_t count, std::uint64_t step, Set set) {
        for (; count > 0; --count, place.offset += step) {
            demand(++pointers_ <= file_.bytes.size() / kPointerBytes, "too many pointers");
            set(pointerAt(place));
        }
    }

    // A byte of either program: what to do in the upper half, a small number in the lower.
    void readRebases(Cursor program) {
        Place place;
        const auto rebase = [&](std::uint64_t count, std::uint64_t step) {
            repeat(place, count, step,
                   [&](std::uint64_t address) { file_.rebases.push_back(address); });
        };
        while (!program.atEnd()) {
            const std::uint8_t byte = program.byte();
            const std::uint64_t small = byte & 0x0F;
            switch (byte & 0xF0) {
                case 0x00:  // done
                    return;
                case 0x10:  // the kind of pointer
                    demand(small == 1, "a rebase of no pointer");
                    break;
                case 0x20:  // the place
                    place = {static_cast<std::size_t>(small), program.number()};
                    break;
                case 0x30:
                    place.offset += program.number();
                    break;
                case 0x40:
                    place.offset += small * kPointerBytes;
                    break;
                case 0x50:
                    rebase(small, kPointerBytes);
                    break;
                case 0x60:
                    rebase(program.number(), kPointerBytes);
                    break;
                case 0x70:
                    rebase(1, kPointerBytes + program.number());
                    break;
                case 0x80: {
                    const std::uint64_t count = program.number();
                    rebase(count, kPointerBytes + program.number());
                    break;
                }
                default:
                    refuse("an unknown rebase");
            }
        }
    }

    // Which library a symbol comes from is not kept: the stand-ins are found by name. The program of
    // the pointers that macOS sets at their first use is "done" after each.
    void readBinds(Cursor program, bool atFirstUse) {
        Place place;
        std::string symbol;
        const auto bind = [&](std::uint64_t count, std::uint64_t step) {
            repeat(place, count, step, [&](std::uint64_t address) {
                file_.binds.push_back({address, symbol});
            });
        };
        while (!program.atEnd()) {
            const std::uint8_t byte = program.byte();
            const std::uint64_t small = byte & 0x0F;
            switch (byte & 0xF0) {
                case 0x00:  // done
                    if (!atFirstUse) return;
                    break;
                case 0x10:  // the library
                case 0x30:
                    break;
                case 0x40:
                    symbol = program.text();
                    break;
                case 0x50:  // the kind of pointer
                    demand(small == 1, "a bind of no pointer");
                    break;
                case 0x70:  // the place
                    place = {static_cast<std::size_t>(small), program.number()};
                    break;
                case 0x80:
                    place.offset += program.number();
                    break;
                case 0x90:
                    bind(1, kPointerBytes);
                    break;
                case 0xA0:
                    bind(1, kPointerBytes + program.number());
                    break;
                case 0xB0:
                    bind(1, kPointerBytes + small * kPointerBytes);
                    break;
                case 0xC0: {
                    const std::uint64_t count = program.number();
                    bind(count, kPointerBytes + program.number());
                    break;
                }
                default:
                    refuse("an unknown bind");
            }
        }
    }

    // The names form a tree: each edge holds a part of a name, a node where a name ends its address.
    void readExports(Cursor tree) {
        struct Node {
            std::uint64_t position;
            std::string name;
        };
        std::vector<Node> open{{0, ""}};
        std::set<std::uint64_t> seen;
        while (!open.empty()) {
            const Node node = open.back();
            open.pop_back();
            demand(seen.insert(node.position).second, "exports in a circle");
            tree.moveTo(node.position);
            const std::uint64_t size = tree.number();
            const std::uint64_t edges = tree.position() + size;
            if (size > 0) readExport(tree, node.name);
            tree.moveTo(edges);
            for (std::uint8_t left = tree.byte(); left > 0; --left) {
                const std::string name = node.name + tree.text();
                open.push_back({tree.number(), name});
            }
        }
    }

    void readExport(Cursor& tree, const std::string& name) {
        demand(tree.number() == 0, "an export that is not plain");
        const std::uint64_t address = tree.number();
        demand(address < file_.memorySize(), "an export outside");
        file_.exports[name] = address;
    }

    MachOFile file_;
    std::size_t pointers_ = 0;
    bool hasDyldInfo_ = false;
};

}  // namespace

std::uint64_t MachOFile::memorySize() const {
    return segments.empty() ? 0 : segments.back().memory.address + segments.back().memory.size;
}

MachOFile readMachO(const std::vector<std::uint8_t>& file, std::uint32_t cpu) {
    return Reader(sliceOf(file, cpu), cpu).take();
}
