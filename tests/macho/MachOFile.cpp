#include "macho/MachOFile.h"

#include <algorithm>
#include <stdexcept>

#include "bytes/Bytes.h"

namespace {

constexpr std::uint32_t kUniversal = 0xCAFE'BABE;  // big-endian, as all of the universal header
constexpr std::uint32_t kMagic64 = 0xFEED'FACF;
constexpr std::uint32_t kDylib = 6;
constexpr std::size_t kHeaderBytes = 32;
constexpr std::size_t kSegmentBytes = 72;
constexpr std::size_t kSectionBytes = 80;
constexpr std::size_t kSymbolBytes = 16;
constexpr std::uint64_t kPointerBytes = 8;

constexpr std::uint32_t kSegmentCommand = 0x19;
constexpr std::uint32_t kSymbolTableCommand = 0x2;
constexpr std::uint32_t kDyldInfoCommand = 0x8000'0022;
constexpr std::uint32_t kChainedFixupsCommand = 0x8000'0034;
constexpr std::uint32_t kReexportCommand = 0x8000'001F;

constexpr std::uint32_t kProtectWrite = 2;
constexpr std::uint32_t kProtectExecute = 4;
constexpr std::uint32_t kSegmentReadOnly = 0x10;

constexpr std::uint64_t kReplaceable = 4;  // by another library's, such as operator new

constexpr std::uint8_t kForDebugger = 0xE0;
constexpr std::uint8_t kSymbolKind = 0x0E;
constexpr std::uint8_t kInSection = 0x0E;

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

// Reads on through a table from its start.
class Cursor {
public:
    Cursor(Bytes file, std::uint64_t start, std::uint64_t size)
        : file_(file), start_(start), size_(size) {}

    bool atEnd() const { return at_ >= size_; }
    void moveTo(std::uint64_t at) { at_ = at; }
    std::uint64_t position() const { return at_; }

    std::uint8_t byte() {
        demand(!atEnd(), "a table ends too early");
        return file_.u8(start_ + at_++);
    }

    // Seven bits a byte, the lowest first; the highest bit is set while more follow.
    std::uint64_t number() {
        const std::uint8_t part = byte();
        return part < 0x80 ? part : (part & 0x7Fu) | number() << 7;
    }

    // The same with a sign, which is the highest bit of the last byte.
    std::uint64_t signedNumber() {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const std::uint8_t part = byte();
            value |= std::uint64_t{part & 0x7Fu} << shift;
            if (part < 0x40) return value;
            if (part < 0x80) return value | ~std::uint64_t{0x7F} << shift;
        }
    }

    std::string text() {
        std::string read;
        while (const std::uint8_t letter = byte())
            read += static_cast<char>(letter);
        return read;
    }

private:
    Bytes file_;
    std::uint64_t start_;
    std::uint64_t size_;
    std::uint64_t at_ = 0;
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

// Which pointers of a library to set, as a program for a little machine: a byte has what to do in its
// upper half and a small number in its lower one.
class PointerProgram {
public:
    enum Kind : unsigned { kRebase = 0x000, kBind = 0x100 };

    PointerProgram(MachOFile& file, Kind kind, Cursor program)
        : file_(file), kind_(kind), program_(program) {}

    // The program of the pointers that macOS sets at their first use has a 0 after each, any other
    // has one at its end.
    void run(bool zeroEnds) {
        while (!program_.atEnd()) {
            const std::uint8_t byte = program_.byte();
            if (byte == 0 && zeroEnds) return;
            take(byte & 0xF0u, byte & 0x0Fu);
        }
    }

private:
    // Which library a symbol comes from is not kept: the stand-ins are found by name.
    void take(unsigned operation, std::uint64_t small) {
        switch (kind_ | operation) {
            case kBind | 0x00:
            case kBind | 0x10:  // the library
            case kBind | 0x30:
                return;
            case kBind | 0x40:
                symbol_ = program_.text();
                return;
            case kBind | 0x60:
                addend_ = program_.signedNumber();
                return;
            case kRebase | 0x10:
            case kBind | 0x50:
                return demand(small == 1, "a pointer of an unknown kind");
            case kRebase | 0x20:
            case kBind | 0x70:
                address_ = file_.segments.at(small).memory.address + program_.number();
                return;
            case kRebase | 0x30:
            case kBind | 0x80:
                address_ += program_.number();
                return;
            case kRebase | 0x40:
                address_ += small * kPointerBytes;
                return;
            case kRebase | 0x50:
                return set(small, 0);
            case kRebase | 0x60:
                return set(program_.number(), 0);
            case kBind | 0x90:
                return set(1, 0);
            case kRebase | 0x70:
            case kBind | 0xA0:
                return set(1, program_.number());
            case kBind | 0xB0:
                return set(1, small * kPointerBytes);
            case kRebase | 0x80:
            case kBind | 0xC0:
                return setSeveral();
            default:
                refuse("an unknown operation on pointers");
        }
    }

    void setSeveral() {
        const std::uint64_t count = program_.number();
        set(count, program_.number());
    }

    // Sets `count` pointers and skips as many bytes after each.
    void set(std::uint64_t count, std::uint64_t skipped) {
        for (; count > 0; --count, address_ += kPointerBytes + skipped) {
            if (kind_ == kRebase)
                file_.rebases.push_back(address_);
            else
                file_.binds.push_back({address_, symbol_, addend_});
        }
    }

    MachOFile& file_;
    Kind kind_;
    Cursor program_;
    std::uint64_t address_ = 0;
    std::uint64_t addend_ = 0;
    std::string symbol_;
};

// Reads the tables of one library.
class Reader {
public:
    Reader(std::vector<std::uint8_t> slice, std::uint32_t cpu) {
        file_.bytes = std::move(slice);
        bytes_ = {file_.bytes.data(), file_.bytes.size()};
        demand(u32(0) == kMagic64 && u32(4) == cpu, "no slice for this processor");
        demand(u32(12) == kDylib, "not a dynamic library");
        std::uint64_t command = kHeaderBytes;
        for (std::uint32_t left = u32(16); left > 0; --left) {
            readCommand(command);
            command += u32(command + 4);
        }
        demand(!file_.exports.empty(), "no tables for the loader");
    }

    MachOFile take() { return std::move(file_); }

private:
    std::uint32_t u32(std::uint64_t at) {
        const std::uint32_t value = bytes_.le32(at);
        demand(!bytes_.overran, "the file ends too early");
        return value;
    }
    std::uint64_t u64(std::uint64_t at) { return u32(at) | std::uint64_t{u32(at + 4)} << 32; }
    std::string name(std::uint64_t at) {
        demand(bytes_.holds(at, 16, 1), "the file ends too early");
        const std::uint8_t* const first = bytes_.data + at;
        return {first, std::find(first, first + 16, std::uint8_t{0})};
    }

    // Segments precede the tables that refer to them, as every linker writes them.
    void readCommand(std::uint64_t at) {
        const std::uint32_t kind = u32(at);
        demand(kind != kChainedFixupsCommand, "chained fixups");
        demand(kind != kReexportCommand, "a re-exported library");
        if (kind == kSegmentCommand) readSegment(at);
        if (kind == kSymbolTableCommand) readSymbols(at);
        if (kind == kDyldInfoCommand) readDyldInfo(at);
    }

    void readSegment(std::uint64_t at) {
        const MachOSegment segment{
            .name = name(at + 8),
            .memory = {u64(at + 24), u64(at + 32)},
            .fileOffset = u64(at + 40),
            .fileSize = u64(at + 48),
            .isWritable = (u32(at + 60) & kProtectWrite) != 0,
            .isExecutable = (u32(at + 60) & kProtectExecute) != 0,
            .isFixedUpOnce = (u32(at + 68) & kSegmentReadOnly) != 0,
        };
        demand(segment.memory.address == file_.memorySize(), "segments with gaps");
        demand(bytes_.holds(segment.fileOffset, segment.fileSize, 1), "a segment outside the file");
        file_.segments.push_back(segment);
        for (std::uint64_t i = 0; i < u32(at + 64); ++i)
            readSection(at + kSegmentBytes + i * kSectionBytes);
    }

    void readSection(std::uint64_t at) {
        const MachORange memory{u64(at + 32), u64(at + 40)};
        if (name(at) == "__unwind_info") file_.unwindWords = memory;
        if (name(at) == "__eh_frame") file_.unwindFrames = memory;
        const auto kind = static_cast<std::uint8_t>(u32(at + 64));
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

    void readSymbols(std::uint64_t at) {
        Cursor names(bytes_, u32(at + 16), u32(at + 20));
        for (std::uint64_t i = 0; i < u32(at + 12); ++i) {
            const std::uint64_t entry = u32(at + 8) + i * kSymbolBytes;
            const std::uint8_t kind = bytes_.u8(entry + 4);
            if ((kind & kForDebugger) != 0 || (kind & kSymbolKind) != kInSection) continue;
            names.moveTo(u32(entry));
            file_.symbols[names.text()] = u64(entry + 8);
        }
    }

    void readDyldInfo(std::uint64_t at) {
        const auto table = [&](std::uint64_t field) {
            return Cursor(bytes_, u32(at + field), u32(at + field + 4));
        };
        PointerProgram(file_, PointerProgram::kRebase, table(8)).run(true);
        PointerProgram(file_, PointerProgram::kBind, table(16)).run(true);
        PointerProgram(file_, PointerProgram::kBind, table(24)).run(true);  // replaceable, if bound
        PointerProgram(file_, PointerProgram::kBind, table(32)).run(false);
        readExports(table(40), "");
    }

    // The names form a tree: each edge holds a part of a name, a node where a name ends its address.
    void readExports(Cursor tree, const std::string& name) {
        const std::uint64_t size = tree.number();
        const std::uint64_t edges = tree.position() + size;
        if (size > 0) {
            demand((tree.number() & ~kReplaceable) == 0, "an export that is not plain");
            file_.exports[name] = tree.number();
        }
        tree.moveTo(edges);
        for (std::uint8_t left = tree.byte(); left > 0; --left) {
            const std::string longer = name + tree.text();
            Cursor node = tree;
            node.moveTo(tree.number());
            readExports(node, longer);
        }
    }

    MachOFile file_;
    Bytes bytes_;
};

}  // namespace

std::uint64_t MachOFile::memorySize() const {
    return segments.empty() ? 0 : segments.back().memory.address + segments.back().memory.size;
}

MachOFile readMachO(const std::vector<std::uint8_t>& file, std::uint32_t cpu) {
    return Reader(sliceOf(file, cpu), cpu).take();
}
