// Any: a file of whichever format its first bytes are of, else a text.

#include "harness/Format.h"

namespace {

const Format& formatOf(const ByteList& file) {
    switch (loadField(file, {0, 2})) {
        case 0x4D42:
            return kBmp;
        case 0x4949:
            return kTiff;
        case 0x4238:
            return kPsd;
        case 0x2F76:
            return kExr;
        case 0x0201:  // as the meshes of the seeds begin
            return kVemo;
        default:
            return kText;
    }
}

}  // namespace

const Format kAny{
    "any", [](const ByteList& file) { return formatOf(file).fields(file); },
    [](ByteList& file, std::size_t fileBytes) { formatOf(file).repair(file, fileBytes); }};
