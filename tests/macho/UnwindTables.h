#pragma once
// UnwindTables: unwinding of exceptions through a macOS library on Linux. macOS describes most functions
// by a word each; Linux reads only DWARF.

#include <cstdint>
#include <vector>

#include "macho/MachOFile.h"

// Returns tables in the form of a section .eh_frame, for the functions of `file` that keep a frame
// pointer and are described by a word. `memory` is the mapped library, its pointers set; the tables are
// valid at that address. Functions without a frame pointer are left out: nothing is thrown through those.
//
// Throws std::runtime_error if the words are of an unknown form.
std::vector<std::uint8_t> dwarfTables(const MachOFile& file, const std::uint8_t* memory);
