// Compares what an export returns with the name that its header has for it.
#include <quillon/BmpOps.h>
#include <quillon/ExrLoader.h>
#include <quillon/ExrRange.h>
#include <quillon/JpegOps.h>
#include <quillon/PsdOps.h>
#include <quillon/Quillon.h>
#include <quillon/TargaOps.h>
#include <quillon/TiffOps.h>
#include <quillon/VemoOps.h>

#include <cstdio>

int main() {
    char path[] = "no such file";
    const float status = mergeMapsTIF(path, 0.0, path, 0, nullptr, 0, nullptr);
    std::printf("%d\n", status == tiff_status::kNotOpened);
}
