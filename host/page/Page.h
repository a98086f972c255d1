#pragma once
// A page that shows how maps were made: the model, its tiles, the sheet after each merge, the files
// made from it, and the time of each call beside the time to copy its file. The page is one file, with
// its pictures and style, and has no scripts.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct PageCall {
    std::string name;    // of the export
    std::string detail;  // what it worked on
    std::string status;
    double milliseconds = 0.0;
    std::optional<double> copyMilliseconds;  // of the file that the call reads
};

struct PagePicture {
    std::string caption;
    std::vector<std::uint8_t> jpeg;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct PageTile {
    std::string name;
    std::string colour;  // in CSS
    std::string groups;  // the numbers of its face groups; may be empty
    std::vector<PagePicture> pictures;
};

// Successive calls of one export, and the map after the last.
struct PageStep {
    std::vector<PageCall> calls;
    std::string does;                  // what the export does, in a sentence
    std::vector<PagePicture> between;  // after each call, small
    std::optional<PagePicture> after;  // what the next step begins with
};

// The calls and files of one map.
struct PageChapter {
    std::string title;
    std::vector<PageStep> steps;
    std::vector<PageCall> calls;  // all, in order
};

struct Page {
    std::string title;
    std::string lead;  // one sentence under the title
    PagePicture model;
    std::vector<PageTile> tiles;
    std::vector<PageChapter> chapters;
};

// The page as HTML.
std::string htmlOf(const Page& page);
