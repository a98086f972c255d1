#include "commands/export/ExportOptions.h"

#include "terminal/Failure.h"

void requireConsistent(const ExportOptions& options) {
    const MapFormatInfo& format = infoOf(options.format);
    const bool height = options.map == MapKind::kHeight;
    const bool tiff = options.format == MapFormat::kTiff;
    const bool bmp = options.format == MapFormat::kBmp;
    const std::string title = format.title;
    const struct {
        bool wrong;
        std::string sentence;
    } kRules[] = {
        {options.out.empty(), "--out is empty; . is the current folder"},
        {!options.tiles.empty() && options.naming != 2, "--tiles needs --naming 2"},
        {height && format.heightBits == 0, "a " + title +
                                               " cannot hold a height map; "
                                               "choose another --format, or --map normal"},
        {height && !options.order.empty(),
         "--order needs --map normal: a height map has one channel"},
        {height && options.targa, "--targa needs --map normal: a Targa file has 8 bits per sample"},
        {options.targa && !tiff, "--targa needs --format tiff, from which it is made"},
        {options.sixteenBits && !height,
         "--bits 16 needs --map height: a normal map has 8 bits per sample"},
        {options.sixteenBits && format.heightBits == 16,
         "a " + title + " height map already has 16 bits; leave --bits out"},
        {options.sixteenBits && !tiff, "--bits 16 needs --format tiff, from which it is made"},
        {options.thumbnail > 0 && !bmp, "--thumbnail needs --format bmp"},
        {options.perTile && options.page,
         "--page shows the maps of all tiles together; leave out --per-tile"},
        {options.jpeg && !bmp, "--jpeg needs --format bmp, from which it is made"},
    };
    for (const auto& rule : kRules) {
        if (rule.wrong) throw WrongUsage(rule.sentence);
    }
}
