// What the built library asks of the system that loads it: the file is read, not the options that it
// was made with.

#include <elf.h>
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/Plugin.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

// The library's file, through structures of the system's <elf.h>.
class ElfFile {
public:
    ElfFile() {
        std::ifstream file(QUILLON_LIBRARY, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
    }

    template <typename Type>
    Type at(std::uint64_t offset) const {
        Type value{};
        if (offset + sizeof value > bytes_.size())
            ADD_FAILURE() << "beyond the file";
        else
            std::memcpy(&value, &bytes_[offset], sizeof value);
        return value;
    }

    std::vector<Elf64_Phdr> segments(std::uint32_t type) const {
        const auto header = at<Elf64_Ehdr>(0);
        std::vector<Elf64_Phdr> found;
        for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
            const auto segment = at<Elf64_Phdr>(header.e_phoff + i * sizeof(Elf64_Phdr));
            if (segment.p_type == type) found.push_back(segment);
        }
        return found;
    }

    // The value of an entry of the dynamic section, 0 if there is none.
    std::uint64_t dynamicValue(std::int64_t tag) const {
        for (const Elf64_Phdr& segment : segments(PT_DYNAMIC)) {
            for (std::uint64_t i = 0; i < segment.p_filesz; i += sizeof(Elf64_Dyn)) {
                const auto entry = at<Elf64_Dyn>(segment.p_offset + i);
                if (entry.d_tag == tag) return entry.d_un.d_val;
            }
        }
        return 0;
    }

    bool holds(const std::string& text) const { return bytes_.find(text) != std::string::npos; }

private:
    std::string bytes_;
};

TEST(Hardening, TheStackHoldsNoCode) {
    const auto stack = ElfFile().segments(PT_GNU_STACK);
    ASSERT_THAT(stack, SizeIs(1));
    EXPECT_EQ(stack[0].p_flags, Elf64_Word{PF_R | PF_W});
}

TEST(Hardening, NoSegmentIsWritableAndRuns) {
    for (const Elf64_Phdr& segment : ElfFile().segments(PT_LOAD))
        EXPECT_NE(segment.p_flags & (PF_W | PF_X), Elf64_Word{PF_W | PF_X});
}

TEST(Hardening, EveryPointerIsSetAtOnceAndReadOnlyThen) {
    const ElfFile file;
    EXPECT_THAT(file.segments(PT_GNU_RELRO), SizeIs(1));
    EXPECT_EQ(file.dynamicValue(DT_FLAGS) & DF_BIND_NOW, DF_BIND_NOW);
    EXPECT_EQ(file.dynamicValue(DT_FLAGS_1) & DF_1_NOW, DF_1_NOW);
    EXPECT_EQ(file.dynamicValue(DT_TEXTREL), 0u);
}

TEST(Hardening, StackFramesAreGuarded) {
    EXPECT_TRUE(ElfFile().holds(std::string("\0__stack_chk_fail\0", 18)));
}

#ifdef __x86_64__
constexpr std::uint32_t kProgramHeaderOfNotes = 0x6474'e553;  // PT_GNU_PROPERTY
constexpr std::uint32_t kX86Features = 0xC000'0002;           // GNU_PROPERTY_X86_FEATURE_1_AND
constexpr std::uint32_t kShadowStack = 2;                     // in these

TEST(Hardening, TheLibraryRunsWithAShadowStack) {
    const ElfFile file;
    const auto notes = file.segments(kProgramHeaderOfNotes);
    ASSERT_THAT(notes, SizeIs(1));
    const std::uint64_t properties = notes[0].p_offset + sizeof(Elf64_Nhdr) + 4;  // behind "GNU"
    std::uint32_t features = 0;
    const std::uint64_t end = notes[0].p_offset + notes[0].p_filesz;
    for (std::uint64_t at = properties; at < end;
         at += 8 + (file.at<std::uint32_t>(at + 4) + 7) / 8 * 8)
        if (file.at<std::uint32_t>(at) == kX86Features) features = file.at<std::uint32_t>(at + 8);
    EXPECT_EQ(features & kShadowStack, kShadowStack);
}

// Where a call through a pointer leads: ENDBR64.
TEST(Hardening, EveryExportBeginsWithALandingInstruction) {
    const Plugin plugin;
    std::ifstream list(QUILLON_EXPORT_LIST);
    for (std::string name; std::getline(list, name);) {
        std::array<unsigned char, 4> first{};
        std::memcpy(first.data(), plugin.symbol(name.c_str()), first.size());
        EXPECT_THAT(first, ElementsAre(0xF3, 0x0F, 0x1E, 0xFA)) << name;
    }
}
#endif

}  // namespace
