#include "commands/ExportOptions.h"

#include "terminal/Failure.h"

void requireConsistent(const ExportOptions& options) {
    const bool height = options.map == MapKind::kHeight;
    const bool tiff = options.format == MapFormat::kTiff;
    const bool psd = options.format == MapFormat::kPsd;
    const bool bmp = options.format == MapFormat::kBmp;
    const struct {
        bool wrong;
        const char* sentence;
    } kRules[] = {
        {!options.tiles.empty() && options.naming != 2, "--tiles counts with --naming 2 only"},
        {height && bmp,
         "a BMP has 8 bits a sample, too few for heights; choose --format tiff or "
         "psd, or --map normal"},
        {height && !options.order.empty(),
         "--order counts with --map normal only: a height map has one channel"},
        {height && options.targa,
         "--targa counts with --map normal only: a Targa file has 8 bits a sample"},
        {options.targa && !tiff, "--targa counts with --format tiff only, from which it is made"},
        {options.sixteenBits && !height,
         "--bits 16 counts with --map height only: a normal map has 8 bits a sample"},
        {options.sixteenBits && psd, "a PSD height map has 16 bits as it is; leave --bits out"},
        {options.thumbnail > 0 && !bmp, "--thumbnail counts with --format bmp only"},
        {options.jpeg && !bmp, "--jpeg counts with --format bmp only, from which it is made"},
    };
    for (const auto& rule : kRules) {
        if (rule.wrong) throw WrongUsage(rule.sentence);
    }
}
