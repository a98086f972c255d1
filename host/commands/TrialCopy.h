#pragma once
// A copy of a file, on which inspect tries the exports that change a file in place, and one pixel of it
// that shows whether they did.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "files/FileFacts.h"

// A folder that the destructor deletes with all its files.
class TemporaryFolder {
public:
    TemporaryFolder();  // throws Failure if it cannot be made
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    std::string at(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

class TrialCopy {
public:
    // `facts` describe the file at `original` and outlive the copy.
    TrialCopy(std::string original, const FileFacts& facts, const TemporaryFolder& folder);

    // Makes the copy anew and returns its path. Throws Failure if it cannot be made.
    const std::string& renew();

    // Whether the file has all its pixels, at places that can be known. Without them hidePixel and
    // markPixel must not be called.
    bool hasPixels() const;

    // Gives the first pixel that differs from the background, the first one stored, the background's
    // value: merging the original into the copy restores it. Returns whether there is such a pixel.
    bool hidePixel();

    // Gives the first pixel samples that all differ, so that every exchange of channels changes it.
    void markPixel();

    // Whether the copy has changed since: that pixel or, without pixels, any byte.
    bool hasChanged() const;

private:
    // Its parts are in one place, or in one of each plane.
    struct StoredPixel {
        std::vector<std::uint64_t> places;
        std::vector<std::uint8_t> bytes;  // of all parts
    };

    StoredPixel readPixel(const std::string& path, std::vector<std::uint64_t> places) const;
    void write(StoredPixel pixel);

    const std::string original_;
    const FileFacts& facts_;
    const std::string path_;
    StoredPixel pixel_;  // as it was written
};
