#pragma once
// A page that shows how maps came about: the model, its tiles, each sheet while it grows, what was
// made of it, and the time of every call beside the time that copying its file takes. The page
// stands alone: pictures, style and all are in the one file, which any browser opens. It needs no
// scripts.

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
    std::string colour;  // as CSS has it
    std::vector<PagePicture> pictures;
};

// Calls of one export in a row, and what a map looks like after the last.
struct PageStep {
    std::vector<PageCall> calls;
    std::string does;                  // what the export does, in a sentence
    std::vector<PagePicture> between;  // after each call, small
    std::optional<PagePicture> after;  // what the next step begins with
};

// What one map was made of and into.
struct PageChapter {
    std::string title;
    std::vector<PageStep> steps;
    std::vector<PageCall> calls;  // all, in the order in which they were made
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
