// macho_transcript: what the exports of the library for macOS do with generated inputs, compared with
// the digests that every other build of the library gives.
//
//   macho_transcript LIBRARY TRANSCRIPT DIGESTS
//
// Ends with 0 when nothing differs, else with 1.

#include <exception>
#include <fstream>
#include <iostream>

#include "golden/ExportCases.h"
#include "golden/Transcript.h"
#include "macho/MachOImage.h"

int main(int count, char** words) {
    if (count != 4) return 2;
    try {
        const MachOImage image(words[1]);
        {
            std::ofstream transcript(words[2]);
            writeExportCases([&](const std::string& name) { return image.symbol(name); },
                             transcript);
        }
        const Lines lines = readLines(words[2]);
        const std::size_t different =
            reportDifferences(digestsOf(lines), readLines(words[3]), std::cout);
        std::cout << lines.size() << " cases, " << different << " digests differ\n";
        return different == 0 ? 0 : 1;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
