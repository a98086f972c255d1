#include "commands/Trials.h"

#include <stdlib.h>

#include <filesystem>

#include "exports/Meanings.h"
#include "mesh/VemoOps.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

// A folder that the destructor deletes with all its files.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (fs::temp_directory_path() / "quillon-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            throw Failure("cannot make a folder for copies in " +
                          fs::temp_directory_path().string());
        path_ = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    std::string at(const std::string& name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

class Trials {
public:
    Trials(const Library& library, std::string path, const FileFacts& facts)
        : library_(library), path_(std::move(path)), facts_(facts) {}

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
        call("mergeCrease", {.text = path_, .buffer = copy()});
    }

    // The folder of the output path does not exist, so an export that takes the mesh ends at its first
    // tile. If it wrote them all, it would return their number.
    void tryUvExport(const char* name, float tiles) {
        Verdict& verdict =
            call(name, {.text = path_, .value = 2.0, .buffer = folder_.at("none/x.y")});
        if (verdict.status != vemo_status::kFirstTileNotWritten) return;
        verdict.status = tiles;
        verdict.accepted = true;
        verdict.meaning =
            statusText(tiles) + (tiles == 1.0f ? " file" : " files") + " would be written";
    }

    void tryTiff() {
        const bool colour = facts_.picture && facts_.picture->channels == 3;
        call("mergeMapsTIF", {.text = path_, .buffer = copy()}, "with a map like it");
        call("swapRGBTIF", {.text = copy(), .value = 1.0});
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
        call("mergeMapsPSD", {.text = path_, .buffer = copy()}, "with a map like it");
        call("swapRGBPSD", {.text = copy(), .value = 1.0});
    }

    void tryBmp() {
        call("mergeMapsBMP", {.text = path_, .buffer = copy()}, "with a map like it");
        call("swapRGBBMP", {.text = copy(), .value = 1.0});
        call("saveAsJpeg", {.text = path_, .value = 50.0, .buffer = nowhere(".jpg")});
        call("CreateThumbnailBMP", {.text = copy(), .value = 64.0});
    }

    Verdict& call(const char* name, const CallArguments& arguments, std::string how = {}) {
        stopIfInterrupted();
        const CallRecord made = library_.call(name, arguments);
        verdicts_.push_back({name, std::move(how), made.result.status, made.meaning.success,
                             made.meaning.sentence});
        return verdicts_.back();
    }

    const std::string& copy() {
        if (!copy_.empty()) return copy_;
        const std::string copy = folder_.at("copy" + fs::path(path_).extension().string());
        std::error_code error;
        if (!fs::copy_file(path_, copy, error))
            throw Failure("cannot copy " + path_ + " to try the exports on: " + error.message());
        return copy_ = copy;
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
    std::string copy_;
    std::vector<Verdict> verdicts_;
};

}  // namespace

std::vector<Verdict> trialsOf(const Library& library, const std::string& path,
                              const FileFacts& facts) {
    return Trials(library, path, facts).run();
}
