#include "page/Page.h"

#include <cstdio>
#include <string_view>

namespace {

constexpr std::string_view kStyle = R"(
:root { --ink: #1d2129; --soft: #667085; --line: #e3e6eb; --paper: #fbfbfc; --card: #ffffff;
        --accent: #3b5bdb; --bad: #c92a2a; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e8eaee; --soft: #98a1b0; --line: #2c313a; --paper: #14171c; --card: #1b1f26;
          --accent: #91a7ff; --bad: #ff8787; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--paper); color: var(--ink);
       font: 16px/1.5 system-ui, sans-serif; }
main { max-width: 1120px; margin: 0 auto; padding: 48px 24px 80px; }
h1 { font-size: 32px; line-height: 1.2; margin: 0 0 4px; letter-spacing: -0.01em; }
h2 { font-size: 19px; margin: 48px 0 12px; }
.lead { color: var(--soft); margin: 0 0 28px; }
figure { margin: 0; }
img { display: block; width: 100%; height: auto; background: #000; }
.sheet { border: 1px solid var(--line); border-radius: 10px; overflow: hidden; }
.tiles { display: grid; gap: 12px; grid-template-columns: repeat(auto-fill, minmax(120px, 1fr)); }
.tiles figure { background: var(--card); border: 1px solid var(--line); border-radius: 8px;
                overflow: hidden; }
figcaption { padding: 4px 10px 6px; font-size: 13px; color: var(--soft);
             font-variant-numeric: tabular-nums; }
table { width: 100%; border-collapse: collapse; font-size: 14px; background: var(--card);
        border: 1px solid var(--line); border-radius: 10px; overflow: hidden; }
th { text-align: left; font-weight: 600; color: var(--soft); }
th, td { padding: 6px 12px; border-bottom: 1px solid var(--line); vertical-align: top; }
tr:last-child td { border-bottom: 0; }
td.name { font-weight: 600; white-space: nowrap; }
td.subject { color: var(--soft); overflow-wrap: anywhere; }
.number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
.bar { display: inline-block; height: 8px; border-radius: 4px; background: var(--accent);
       margin-right: 8px; vertical-align: middle; }
footer { margin-top: 48px; color: var(--soft); font-size: 13px; }
)";

std::string escaped(std::string_view text) {
    std::string html;
    for (const char c : text) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

std::string base64(const std::vector<std::uint8_t>& bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t left = bytes.size() - i;
        const std::uint32_t group = std::uint32_t{bytes[i]} << 16 |
                                    (left > 1 ? std::uint32_t{bytes[i + 1]} << 8 : 0) |
                                    (left > 2 ? std::uint32_t{bytes[i + 2]} : 0);
        text += kDigits[group >> 18];
        text += kDigits[group >> 12 & 63];
        text += left > 1 ? kDigits[group >> 6 & 63] : '=';
        text += left > 2 ? kDigits[group & 63] : '=';
    }
    return text;
}

std::string fixed(double number, const char* format) {
    char digits[32];
    std::snprintf(digits, sizeof digits, format, number);
    return digits;
}

std::string imageOf(const PagePicture& picture) {
    return "<img src=\"data:image/jpeg;base64," + base64(picture.jpeg) + "\" alt=\"" +
           escaped(picture.caption) + "\" width=\"" + std::to_string(picture.width) +
           "\" height=\"" + std::to_string(picture.height) + "\">\n";
}

std::string tilesOf(const Page& page) {
    std::string html = "<h2>" + std::to_string(page.tiles.size()) +
                       (page.tiles.size() == 1 ? " tile" : " tiles") +
                       "</h2>\n<div class=\"tiles\">\n";
    for (const PagePicture& tile : page.tiles) {
        html += "<figure>" + imageOf(tile) + "<figcaption>" + escaped(tile.caption) +
                "</figcaption></figure>\n";
    }
    return html + "</div>\n";
}

// Calls of the same export that follow one another, as one row.
struct Run {
    const PageCall* first = nullptr;
    const PageCall* last = nullptr;
    std::size_t count = 0;
    double milliseconds = 0.0;
    bool sameStatus = true;
};

std::vector<Run> runsOf(const std::vector<PageCall>& calls) {
    std::vector<Run> runs;
    for (const PageCall& call : calls) {
        if (runs.empty() || runs.back().last->name != call.name) runs.push_back({&call});
        Run& run = runs.back();
        run.last = &call;
        ++run.count;
        run.milliseconds += call.milliseconds;
        run.sameStatus = run.sameStatus && call.status == run.first->status;
    }
    return runs;
}

std::string rowOf(const Run& run, double longest) {
    std::string subject = escaped(run.first->subject);
    if (run.count > 1 && !subject.empty()) subject += " &hellip; " + escaped(run.last->subject);
    const std::string times = run.count > 1 ? " &times; " + std::to_string(run.count) : "";
    const std::string status =
        run.sameStatus ? run.first->status : run.first->status + " &hellip; " + run.last->status;
    const double share = longest > 0.0 ? 90.0 * run.milliseconds / longest : 0.0;
    return "<tr><td class=\"name\">" + escaped(run.first->name) + times +
           "</td><td class=\"subject\">" + subject + "</td><td class=\"number\">" + status +
           "</td><td class=\"number\"><span class=\"bar\" style=\"width:" + fixed(share, "%.0f") +
           "px\"></span>" + fixed(run.milliseconds, "%.2f") + " ms</td></tr>\n";
}

std::string callsOf(const Page& page) {
    const std::vector<Run> runs = runsOf(page.calls);
    double longest = 0.0;
    for (const Run& run : runs)
        longest = run.milliseconds > longest ? run.milliseconds : longest;
    std::string html = "<h2>" + std::to_string(page.calls.size()) +
                       " calls</h2>\n<table>\n<tr><th>Export</th><th>On</th>"
                       "<th class=\"number\">Status</th><th class=\"number\">Time</th></tr>\n";
    for (const Run& run : runs)
        html += rowOf(run, longest);
    return html + "</table>\n";
}

}  // namespace

std::string htmlOf(const Page& page) {
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        escaped(page.title) + "</title>\n<style>";
    html += kStyle;
    html += "</style>\n</head>\n<body>\n<main>\n<h1>" + escaped(page.title) +
            "</h1>\n<p class=\"lead\">" + escaped(page.lead) + "</p>\n<figure class=\"sheet\">" +
            imageOf(page.sheet) + "<figcaption>" + escaped(page.sheet.caption) +
            "</figcaption></figure>\n";
    html += tilesOf(page);
    html += callsOf(page);
    html +=
        "<footer>Each call was made through the built library, as Morvane makes it; the "
        "pictures are JPEG files that the library wrote.</footer>\n</main>\n</body>\n</html>\n";
    return html;
}
