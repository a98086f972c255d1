#include "macho/UnwindTables.h"

#include <map>
#include <stdexcept>

#include "bytes/Bytes.h"
#include "support/Append.h"

namespace {

// A function that is described by a word; its length reaches to the next one.
struct Function {
    std::uint32_t start;
    std::uint32_t word;
};

struct WordTables {
    std::vector<Function> functions;                  // in the order of their addresses
    std::map<std::uint32_t, std::uint32_t> handlers;  // of functions that catch or clean up
    std::vector<std::uint32_t> personalities;         // addresses of pointers to them
};

constexpr std::uint32_t kRegularPage = 2;
constexpr std::uint32_t kCompressedPage = 3;

// Pages of words, in one of two forms. A word that several functions share is in a list for all
// pages or in one for the page.
class WordReader {
public:
    WordReader(const std::uint8_t* memory, const MachORange& range)
        : info_{memory + range.address, static_cast<std::size_t>(range.size)} {}

    WordTables read() {
        const std::uint32_t personalities = info_.le32(12);
        for (std::uint32_t i = 0; i < info_.le32(16); ++i)
            tables_.personalities.push_back(info_.le32(personalities + 4 * i));
        const std::uint32_t index = info_.le32(20);
        const std::uint32_t entries = info_.le32(24);
        if (entries == 0) throw std::runtime_error("no words for unwinding");
        for (std::uint32_t i = 0; i + 1 < entries; ++i)
            readPage(info_.le32(index + 12 * i), info_.le32(index + 12 * i + 4));
        // The last entry marks the ends.
        const std::uint32_t end = index + 12 * (entries - 1);
        tables_.functions.push_back({info_.le32(end), 0});
        for (std::uint32_t at = info_.le32(index + 8); at < info_.le32(end + 8); at += 8)
            tables_.handlers[info_.le32(at)] = info_.le32(at + 4);
        if (info_.overran) throw std::runtime_error("words for unwinding end too early");
        return tables_;
    }

private:
    void readPage(std::uint32_t base, std::uint32_t page) {
        const std::uint32_t first = page + info_.le16(page + 4);
        const std::uint32_t count = info_.le16(page + 6);
        switch (info_.le32(page)) {
            case kRegularPage:
                for (std::uint32_t i = 0; i < count; ++i)
                    tables_.functions.push_back(
                        {info_.le32(first + 8 * i), info_.le32(first + 8 * i + 4)});
                return;
            case kCompressedPage:
                for (std::uint32_t i = 0; i < count; ++i) {
                    const std::uint32_t entry = info_.le32(first + 4 * i);
                    tables_.functions.push_back(
                        {base + (entry & 0xFF'FFFF), sharedWord(page, entry >> 24)});
                }
                return;
            default:
                throw std::runtime_error("an unknown page of words for unwinding");
        }
    }

    std::uint32_t sharedWord(std::uint32_t page, std::uint32_t place) {
        const std::uint32_t common = info_.le32(8);
        if (place < common) return info_.le32(info_.le32(4) + 4 * place);
        return info_.le32(page + info_.le16(page + 8) + 4 * (place - common));
    }

    Bytes info_;
    WordTables tables_;
};

// A register that a function saved, `slot` pointers below the caller's stack.
struct Saved {
    unsigned reg;
    unsigned slot;
};

#ifdef __aarch64__
constexpr std::uint32_t kWithFramePointer = 4;
constexpr unsigned kFramePointer = 29;
constexpr unsigned kReturnAddress = 30;

// Pairs of registers, a bit each, the first right below the frame pointer.
std::vector<Saved> savedRegisters(std::uint32_t word) {
    constexpr struct {
        std::uint32_t bit;
        unsigned first;
    } kPairs[] = {{0x001, 19}, {0x002, 21}, {0x004, 23}, {0x008, 25}, {0x010, 27},
                  {0x100, 72}, {0x200, 74}, {0x400, 76}, {0x800, 78}};
    std::vector<Saved> saved;
    unsigned slot = 2;
    for (const auto& pair : kPairs) {
        if ((word & pair.bit) == 0) continue;
        saved.push_back({pair.first, ++slot});
        saved.push_back({pair.first + 1, ++slot});
    }
    return saved;
}
#else
constexpr std::uint32_t kWithFramePointer = 1;
constexpr unsigned kFramePointer = 6;
constexpr unsigned kReturnAddress = 16;

// Up to five registers, three bits each, the first at the lowest address.
std::vector<Saved> savedRegisters(std::uint32_t word) {
    constexpr unsigned kNumbers[] = {0, 3, 12, 13, 14, 15, 0, 0};
    std::vector<Saved> saved;
    const unsigned lowest = (word >> 16 & 0xFF) + 2;
    for (unsigned i = 0; i < 5; ++i) {
        const unsigned reg = kNumbers[word >> 3 * i & 7];
        if (reg != 0) saved.push_back({reg, lowest - i});
    }
    return saved;
}
#endif

// Writes the tables: what all functions have in common, then an entry for each.
class DwarfWriter {
public:
    explicit DwarfWriter(std::uint64_t personality) {
        begin();
        u32(0);  // what follows is common
        u8(1);   // the version
        for (const char letter : {'z', 'P', 'L', 'R', '\0'})
            u8(static_cast<std::uint8_t>(letter));
        number(1);
        u8(0x78);  // offsets count in -8 bytes
        number(kReturnAddress);
        number(11);
        u8(kAbsolute);
        u64(personality);
        u8(kAbsolute);  // handlers and functions
        u8(kAbsolute);
        u8(0x0C);  // the caller's stack begins 16 bytes above the frame pointer,
        number(kFramePointer);
        number(16);
        save({kFramePointer, 2});  // which is itself saved there
        save({kReturnAddress, 1});
        end();
    }

    void add(std::uint64_t start, std::uint64_t length, std::uint64_t handler,
             const std::vector<Saved>& registers) {
        begin();
        u32(static_cast<std::uint32_t>(bytes_.size()));  // back to what is common
        u64(start);
        u64(length);
        number(8);
        u64(handler);
        for (const Saved& saved : registers)
            save(saved);
        end();
    }

    ByteList take() {
        u32(0);
        return std::move(bytes_);
    }

private:
    static constexpr std::uint8_t kAbsolute = 0;

    void u8(std::uint8_t value) { bytes_.push_back(value); }
    void u32(std::uint32_t value) { appendLe32(bytes_, value); }
    void u64(std::uint64_t value) {
        u32(static_cast<std::uint32_t>(value));
        u32(static_cast<std::uint32_t>(value >> 32));
    }
    // Seven bits a byte; here two are enough.
    void number(unsigned value) {
        if (value >= 0x80) u8(static_cast<std::uint8_t>(value | 0x80));
        u8(static_cast<std::uint8_t>(value >= 0x80 ? value >> 7 : value));
    }
    void save(const Saved& saved) {
        if (saved.reg < 64) {
            u8(static_cast<std::uint8_t>(0x80 | saved.reg));
        } else {
            u8(0x05);
            number(saved.reg);
        }
        number(saved.slot);
    }
    void begin() {
        start_ = bytes_.size();
        u32(0);
    }
    // Each entry begins with its length, a multiple of a pointer's.
    void end() {
        while ((bytes_.size() - start_) % 8 != 4)
            u8(0);
        storeLe32(&bytes_[start_], static_cast<std::uint32_t>(bytes_.size() - start_ - 4));
    }

    ByteList bytes_;
    std::size_t start_ = 0;
};

}  // namespace

std::vector<std::uint8_t> dwarfTables(const MachOFile& file, const std::uint8_t* memory) {
    const WordTables tables = WordReader(memory, file.unwindWords).read();
    if (tables.personalities.size() > 1)
        throw std::runtime_error("more than one way to handle exceptions");
    std::uint64_t personality = 0;  // none: every function that catches is described in DWARF
    for (const std::uint32_t place : tables.personalities) {
        if (place > file.memorySize() - 8)
            throw std::runtime_error("a handler outside the library");
        personality = loadLe64(memory + place);
    }

    const auto base = reinterpret_cast<std::uintptr_t>(memory);
    DwarfWriter writer(personality);
    for (std::size_t i = 0; i + 1 < tables.functions.size(); ++i) {
        const auto& [start, word] = tables.functions[i];
        if ((word >> 24 & 0xF) != kWithFramePointer) continue;
        const auto handler = tables.handlers.find(start);
        writer.add(base + start, tables.functions[i + 1].start - start,
                   handler == tables.handlers.end() ? 0 : base + handler->second,
                   savedRegisters(word));
    }
    return writer.take();
}
