#pragma once
// A folder of its own for a test, removed with its contents at the end.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

using ByteList = std::vector<std::uint8_t>;

class TempDir {
public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();

    // The path of an entry, which need not exist.
    std::string path(std::string_view name = {}) const;

    // Writes a file and returns its path.
    std::string write(std::string_view name, const ByteList& bytes) const;
    std::string write(std::string_view name, std::string_view text) const;
    std::string makeFolder(std::string_view name) const;

    bool has(std::string_view name) const;
    // The names in the folder, sorted.
    std::vector<std::string> names() const;

private:
    std::filesystem::path folder_;
};

// A whole file, or its bytes from an offset on.
ByteList readBytes(const std::string& path, std::size_t from = 0);
std::string readText(const std::string& path);

// As many bytes as there are, `count` at most: a truncated file.
ByteList firstBytes(const ByteList& bytes, std::size_t count);

// Makes a file's last change an hour old; whether it still is.
void makeOld(const std::string& path);
bool isOld(const std::string& path);
