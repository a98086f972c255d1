#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "quillon-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::string TempDir::path(std::string_view name) const {
    return name.empty() ? folder_.string() : (folder_ / name).string();
}

std::string TempDir::write(std::string_view name, const ByteList& bytes) const {
    const std::string file = path(name);
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    if (!out.flush()) throw std::runtime_error("cannot write " + file);
    return file;
}

std::string TempDir::write(std::string_view name, std::string_view text) const {
    return write(name, ByteList(text.begin(), text.end()));
}

std::string TempDir::makeFolder(std::string_view name) const {
    const std::string folder = path(name);
    fs::create_directories(folder);
    return folder;
}

bool TempDir::has(std::string_view name) const {
    return fs::exists(folder_ / name);
}

std::vector<std::string> TempDir::names() const {
    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_))
        found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
}

ByteList readBytes(const std::string& path, std::size_t from) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << path;
    in.seekg(static_cast<std::streamoff>(from));
    ByteList bytes;
    ByteList piece(16 << 10);
    do {
        in.read(reinterpret_cast<char*>(piece.data()), std::ssize(piece));
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + in.gcount());
    } while (in);
    return bytes;
}

std::string readText(const std::string& path) {
    const ByteList bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

ByteList firstBytes(const ByteList& bytes, std::size_t count) {
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(count, bytes.size()));
    return {bytes.begin(), end};
}

void makeOld(const std::string& path) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

bool isOld(const std::string& path) {
    return fs::file_time_type::clock::now() - fs::last_write_time(path) > std::chrono::minutes(30);
}
