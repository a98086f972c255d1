// macho_transcript: calls the exports of the library for macOS with generated inputs and compares the
// results with the digests that every other build of the library gives.
//
//   macho_transcript LIBRARY CPP_LIBRARY TRANSCRIPT DIGESTS
//
// Exits with 0 if nothing differs, otherwise with 1.

#include <exception>
#include <iostream>

#include "golden/ExportCases.h"
#include "golden/Transcript.h"
#include "macho/MachOImage.h"

int main(int count, char** words) {
    if (count != 5) return 2;
    try {
        const MachOImage cppLibrary(words[2]);
        const MachOImage image(words[1], &cppLibrary);
        writeExportCases([&](const std::string& name) { return image.symbol(name); }, words[3]);
        return agreesWithDigests(words[3], words[4]) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
