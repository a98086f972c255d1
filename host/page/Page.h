#pragma once
// A page that shows one map export: the merged sheet, each tile's picture and the calls. It stands
// alone: pictures, style and all are in the one file, which any browser opens.

#include <cstdint>
#include <string>
#include <vector>

struct PageCall {
    std::string name;     // of the export
    std::string subject;  // what it was called on
    std::string status;
    double milliseconds = 0.0;
};

struct PagePicture {
    std::string caption;
    std::vector<std::uint8_t> jpeg;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct Page {
    std::string title;
    std::string lead;  // one sentence under the title
    PagePicture sheet;
    std::vector<PagePicture> tiles;
    std::vector<PageCall> calls;  // in the order in which they were made
};

// The page as HTML.
std::string htmlOf(const Page& page);
