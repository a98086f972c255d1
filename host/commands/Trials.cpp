#include "commands/Trials.h"

#include <algorithm>
#include <filesystem>

#include "commands/TrialCopy.h"
#include "mesh/VemoOps.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

class Trials {
public:
    Trials(const Library& library, std::string path, const FileFacts& facts)
        : library_(library), path_(std::move(path)), facts_(facts), copy_(path_, facts_, folder_) {}

    std::vector<Verdict> run() {
        switch (facts_.kind) {
            case FileKind::kTiff:
                tryTiff();
                break;
            case FileKind::kPsd:
                tryPsd();
                break;
            case FileKind::kBmp:
                tryBmp();
                break;
            case FileKind::kVemo:
                tryVemo();
                break;
            case FileKind::kExr:
                call("OpenEXR", {.text = path_});
                break;
            case FileKind::kJpeg:
            case FileKind::kTarga:
            case FileKind::kUnknown:
                break;
        }
        return std::move(verdicts_);
    }

private:
    void tryVemo() {
        constexpr double kNumbers = 2.0;
        const float tiles = call("getUVTile", {.text = path_, .value = kNumbers}).status;
        call("getUVGroups", {.text = path_});
        tryUvExport("getUVs", tiles);
        tryUvExport("getUVsMask", tiles);
        call("mergeCrease", {.text = path_, .buffer = copy_.renew()});
    }

    // The folder of the output path does not exist, so an export that takes the mesh ends at its first
    // tile. If it wrote them all, it would return their number.
    void tryUvExport(const char* name, float tiles) {
        Verdict& verdict =
            call(name, {.text = path_, .value = 2.0, .buffer = folder_.at("none/x.y")});
        if (verdict.status != vemo_status::kFirstTileNotWritten) return;
        verdict.status = tiles;
        verdict.outcome = Outcome::kAccepted;
        verdict.meaning =
            statusText(tiles) + (tiles == 1.0f ? " file" : " files") + " would be written";
    }

    void tryTiff() {
        const bool colour = facts_.picture && facts_.picture->channels == 3;
        tryMerge("mergeMapsTIF");
        trySwap("swapRGBTIF");
        for (const double layout : colour ? std::vector{3.0, 4.0} : std::vector{1.0}) {
            convertTo16Bits(layout, ".tif", " to TIFF");
            if (layout != 3.0) convertTo16Bits(layout, ".psd", " to PSD");
        }
        call("convertTIFFSingle", {.text = path_, .buffer = nowhere(".tif")});
        call("getScale", {.text = path_, .value = colour ? 3.0 : 1.0});
        call("saveAsTarga", {.text = path_, .buffer = nowhere(".tga")});
    }

    void convertTo16Bits(double layout, const char* extension, const char* target) {
        call("convertTIFF16", {.text = path_, .value = layout, .buffer = nowhere(extension)},
             "layout " + std::to_string(static_cast<int>(layout)) + target);
    }

    void tryPsd() {
        tryMerge("mergeMapsPSD");
        trySwap("swapRGBPSD");
    }

    void tryBmp() {
        tryMerge("mergeMapsBMP");
        trySwap("swapRGBBMP");
        call("saveAsJpeg", {.text = path_, .value = 50.0, .buffer = nowhere(".jpg")});
        call("CreateThumbnailBMP", {.text = copy_.renew(), .value = 64.0});
    }

    // Merges the file into a copy of which one pixel is background.
    void tryMerge(const char* name) {
        const std::string& target = copy_.renew();
        const bool isAllBackground = copy_.hasPixels() && !copy_.hidePixel();
        Verdict& verdict = call(name, {.text = path_, .buffer = target}, "with a map like it");
        if (verdict.outcome != Outcome::kAccepted) return;
        if (isAllBackground)
            setUnchanged(verdict, "each pixel has the value of the first, which is the background");
        else if (!copy_.hasChanged())
            setUnchanged(verdict, "the target stays as it was");
    }

    void trySwap(const char* name) {
        const std::string& map = copy_.renew();
        if (copy_.hasPixels()) copy_.markPixel();
        Verdict& verdict = call(name, {.text = map, .value = 1.0});
        if (verdict.outcome == Outcome::kRefused || copy_.hasChanged()) return;
        const auto& picture = facts_.picture;
        const bool isColour = !picture || (picture->channels == 3 && picture->depth == 8);
        setUnchanged(verdict, isColour ? "the map stays as it was"
                                       : "only maps of 3 channels of 8 bits are changed");
    }

    static void setUnchanged(Verdict& verdict, const char* meaning) {
        verdict.outcome = Outcome::kChangesNothing;
        verdict.meaning = meaning;
    }

    Verdict& call(const char* name, const CallArguments& arguments, std::string how = {}) {
        stopIfInterrupted();
        const CallRecord made = library_.call(name, arguments);
        Verdict& verdict = verdicts_.emplace_back(Verdict{
            name, std::move(how), made.result.status, Outcome::kRefused, made.meaning.sentence});
        if (made.meaning.success)
            verdict.outcome = isMisread(verdict) ? Outcome::kWrongResult : Outcome::kAccepted;
        return verdict;
    }

    bool isMisread(const Verdict& verdict) const {
        const auto namesIt = [&](const Misreading& misreading) {
            return verdict.name == misreading.name && verdict.how.ends_with(misreading.arguments);
        };
        return std::ranges::any_of(facts_.notes, [&](const Note& note) {
            return std::ranges::any_of(note.misreadings, namesIt);
        });
    }

    // A link to /dev/null with that extension, since exports look at extensions.
    std::string nowhere(const std::string& extension) const {
        std::string path = folder_.at("nowhere" + extension);
        std::error_code there;
        fs::create_symlink("/dev/null", path, there);
        return path;
    }

    const Library& library_;
    const std::string path_;
    const FileFacts& facts_;
    TemporaryFolder folder_;
    TrialCopy copy_;
    std::vector<Verdict> verdicts_;
};

}  // namespace

std::vector<Verdict> trialsOf(const Library& library, const std::string& path,
                              const FileFacts& facts) {
    return Trials(library, path, facts).run();
}
