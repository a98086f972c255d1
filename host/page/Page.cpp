#include "page/Page.h"

#include <algorithm>
#include <string_view>

#include "page/Html.h"

namespace {

constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --ink: #1d2129; --soft: #5f6b7d; --line: #e1e5eb;
        --paper: #f7f8fa; --card: #ffffff; --accent: #3b5bdb; --copy: #adb5c2; --plate: #1b1f26; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e8eaee; --soft: #9aa4b4; --line: #2c323c; --paper: #12151a; --card: #1b1f26;
          --accent: #91a7ff; --copy: #566173; --plate: #0d0f13; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--paper); color: var(--ink); font: 16px/1.5 system-ui, sans-serif; }
main { max-width: 1120px; margin: 0 auto; padding: 48px 24px 80px; }
h1 { font-size: 34px; line-height: 1.2; margin: 0 0 4px; letter-spacing: -0.015em; }
h2 { font-size: 23px; margin: 56px 0 6px; letter-spacing: -0.01em; }
h3 { font-size: 16px; margin: 0; }
p { margin: 0 0 16px; }
.lead, .does { color: var(--soft); }
code { font: 600 15px/1.5 ui-monospace, monospace; }
figure { margin: 0; overflow: hidden; background: var(--card); border: 1px solid var(--line);
         border-radius: 10px; }
img { display: block; width: 100%; height: auto; background: var(--plate); }
figcaption { padding: 5px 12px 6px; font-size: 13px; color: var(--soft); overflow-wrap: anywhere;
             font-variant-numeric: tabular-nums; }
.grid { display: grid; gap: 10px; margin-bottom: 12px; }
.tiles .row { display: flex; }
.tiles img { min-width: 0; flex: 1; border-right: 1px solid var(--card); }
.tiles img:last-child { border: 0; }
.dot { display: inline-block; width: 10px; height: 10px; border-radius: 5px; margin-right: 7px; }
.step { padding: 18px 0 4px; }
.head { display: flex; flex-wrap: wrap; gap: 0 16px; align-items: baseline; }
.times { margin-left: auto; font-size: 14px; color: var(--soft); font-variant-numeric: tabular-nums; }
.times b { color: var(--ink); }
.does { font-size: 15px; margin-bottom: 10px; }
.strip figure { border-radius: 6px; }
.strip figcaption { padding: 1px 8px 2px; font-size: 12px; }
.own { width: fit-content; max-width: 100%; }
.own img { width: auto; max-width: 100%; }
table { width: 100%; border-spacing: 0; font-size: 14px; background: var(--card);
        border: 1px solid var(--line); border-radius: 10px; overflow: hidden; }
th { text-align: left; font-weight: 600; color: var(--soft); }
th, td { padding: 7px 12px; border-bottom: 1px solid var(--line); vertical-align: middle; }
tr:last-child td { border-bottom: 0; }
tr.chapter td { font-weight: 600; color: var(--soft); padding-top: 16px; }
td.name { font-weight: 600; white-space: nowrap; }
td.detail { color: var(--soft); overflow-wrap: anywhere; }
.number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
td.bars { width: 46%; }
.bar { display: block; height: 9px; min-width: 2px; border-radius: 2px; background: var(--accent); }
.bar.copy { background: var(--copy); margin-top: 3px; }
.key { display: inline-block; width: 22px; height: 9px; margin: 0 7px 0 16px; border-radius: 2px;
       background: var(--accent); }
.key.copy { background: var(--copy); }
.key:first-child { margin-left: 0; }
details { margin-top: 18px; }
summary { cursor: pointer; color: var(--soft); margin-bottom: 10px; }
footer { margin-top: 48px; color: var(--soft); font-size: 13px; }
)";

constexpr std::string_view kComparisonHead = R"(<h2>Time beside copying</h2>
<p class="lead"><span class="key"></span>the call<span class="key copy"></span>copying the same bytes
on the same disk: the file that the call reads, of getUVs the files that it wrote. Each call was timed
once, each copy is the fastest of three.</p>
<table>
<tr><th>Export</th><th></th><th class="number">Call</th><th class="number">Copying</th>
<th class="number">Ratio</th></tr>
)";

std::string imageOf(const PagePicture& picture) {
    return "<img src=\"data:image/jpeg;base64," + base64(picture.jpeg) + "\" alt=\"" +
           escaped(picture.caption) + "\" width=\"" + std::to_string(picture.width) +
           "\" height=\"" + std::to_string(picture.height) + "\" />\n";
}

std::string figureOf(const PagePicture& picture) {
    return "<figure>" + imageOf(picture) + "<figcaption>" + escaped(picture.caption) +
           "</figcaption></figure>\n";
}

// A picture that is narrower than the page keeps its own size.
std::string figureOnPage(const PagePicture& picture) {
    constexpr std::uint32_t kPageWidth = 1072;
    std::string html = figureOf(picture);
    if (picture.width < kPageWidth) html.insert(html.find('>'), " class=\"own\"");
    return html;
}

// As many columns as fit, each at least `pixels` wide.
std::string gridOf(const char* kind, std::size_t pixels) {
    return "<div class=\"grid " + std::string(kind) +
           "\" style=\"grid-template-columns:repeat(auto-fill,minmax(" + std::to_string(pixels) +
           "px,1fr))\">\n";
}

std::string tilesOf(const Page& page) {
    std::string html = "<h2>" + counted(page.tiles.size(), "tile") +
                       "</h2>\n<p class=\"lead\">Each tile's UVs, and the maps that the host "
                       "painted of it.</p>\n" +
                       gridOf("tiles", 100 * page.tiles.front().pictures.size());
    for (const PageTile& tile : page.tiles) {
        html += "<figure><div class=\"row\">\n";
        for (const PagePicture& picture : tile.pictures)
            html += imageOf(picture);
        html += "</div><figcaption><span class=\"dot\" style=\"background:" + tile.colour +
                "\"></span>" + escaped(tile.name) +
                (tile.groups.empty() ? "" : ": group " + tile.groups) + "</figcaption></figure>\n";
    }
    return html + "</div>\n";
}

// Successive calls of one export.
using Run = std::vector<PageCall>;

double timeOf(const Run& calls) {
    double sum = 0.0;
    for (const PageCall& call : calls)
        sum += call.milliseconds;
    return sum;
}

// Nothing unless every call has one.
std::optional<double> copyTimeOf(const Run& calls) {
    double sum = 0.0;
    for (const PageCall& call : calls) {
        if (!call.copyMilliseconds) return std::nullopt;
        sum += *call.copyMilliseconds;
    }
    return sum;
}

std::string nameOf(const Run& calls) {
    const std::string times = calls.size() > 1 ? " &#215; " + std::to_string(calls.size()) : "";
    return escaped(calls.front().name) + times;
}

std::string millisecondsOf(double time) {
    return fixed(time, time < 9.95 ? 2 : 1) + " ms";
}

// How wide a small picture is shown: wide sheets need more.
std::string stripOf(const std::vector<PagePicture>& pictures) {
    if (pictures.empty()) return {};
    const bool wide = pictures.front().width > 2 * pictures.front().height;
    std::string html = gridOf("strip", wide ? 200 : 130);
    for (const PagePicture& picture : pictures)
        html += figureOf(picture);
    return html + "</div>\n";
}

std::string stepOf(const PageStep& step) {
    std::string html = "<section class=\"step\">\n<div class=\"head\"><h3><code>" +
                       nameOf(step.calls) + "</code></h3><span class=\"times\"><b>" +
                       millisecondsOf(timeOf(step.calls)) + "</b>";
    if (const auto copy = copyTimeOf(step.calls)) html += ", copying " + millisecondsOf(*copy);
    html += "</span></div>\n<p class=\"does\">" + escaped(step.does) + "</p>\n";
    html += stripOf(step.between);
    if (step.after) html += figureOnPage(*step.after);
    return html + "</section>\n";
}

std::string chapterOf(const PageChapter& chapter) {
    std::string html = "<h2>" + escaped(chapter.title) +
                       "</h2>\n<p class=\"lead\">Each picture is the file as the call left it; the "
                       "one above is what the call began with.</p>\n";
    for (const PageStep& step : chapter.steps)
        html += stepOf(step);
    return html;
}

std::vector<Run> runsOf(const PageChapter& chapter) {
    std::vector<Run> runs;
    for (const PageCall& call : chapter.calls) {
        if (runs.empty() || runs.back().front().name != call.name) runs.emplace_back();
        runs.back().push_back(call);
    }
    return runs;
}

// Each chapter's title, then its runs, of which `row` returns the row, if they have one.
template <typename Row>
std::string rowsOf(const Page& page, const char* columns, Row row) {
    std::string html;
    for (const PageChapter& chapter : page.chapters) {
        html += std::string("<tr class=\"chapter\"><td colspan=\"") + columns + "\">" +
                escaped(chapter.title) + "</td></tr>\n";
        for (const Run& run : runsOf(chapter))
            html += row(run);
    }
    return html;
}

std::string numberCell(const std::string& number) {
    return "<td class=\"number\">" + number + "</td>";
}

std::string barOf(const char* kind, double time, double longest) {
    const double share = longest > 0.0 ? 100.0 * time / longest : 0.0;
    return "<span class=\"" + std::string(kind) + "\" style=\"width:" + fixed(share, 1) +
           "%\"></span>";
}

// Nothing for calls of which no copy was timed.
std::string comparisonRow(const Run& run, double longest) {
    const auto copy = copyTimeOf(run);
    if (!copy) return {};
    const double time = timeOf(run);
    return "<tr><td class=\"name\">" + nameOf(run) + "</td><td class=\"bars\">" +
           barOf("bar", time, longest) + barOf("bar copy", *copy, longest) + "</td>" +
           numberCell(millisecondsOf(time)) + numberCell(millisecondsOf(*copy)) +
           numberCell(*copy > 0.0 ? fixed(time / *copy, 1) : "") + "</tr>\n";
}

std::string comparisonOf(const Page& page) {
    double longest = 0.0;
    for (const PageChapter& chapter : page.chapters) {
        for (const Run& run : runsOf(chapter)) {
            if (const auto copy = copyTimeOf(run))
                longest = std::max({longest, timeOf(run), *copy});
        }
    }
    const auto row = [&](const Run& run) { return comparisonRow(run, longest); };
    return std::string(kComparisonHead) + rowsOf(page, "5", row) + "</table>\n";
}

std::string callRow(const Run& run) {
    const PageCall& first = run.front();
    const PageCall& last = run.back();
    std::string detail = escaped(first.detail);
    if (run.size() > 1 && !detail.empty()) detail += " &#8230; " + escaped(last.detail);
    const bool sameStatus =
        std::ranges::all_of(run, [&](const PageCall& call) { return call.status == first.status; });
    const std::string status = sameStatus ? first.status : first.status + " &#8230; " + last.status;
    return "<tr><td class=\"name\">" + nameOf(run) + "</td><td class=\"detail\">" + detail +
           "</td>" + numberCell(status) + numberCell(millisecondsOf(timeOf(run))) + "</tr>\n";
}

std::string callsOf(const Page& page) {
    std::size_t count = 0;
    for (const PageChapter& chapter : page.chapters)
        count += chapter.calls.size();
    return "<details>\n<summary>All " + counted(count, "call") +
           "</summary>\n<table>\n<tr><th>Export</th><th>On</th><th class=\"number\">Status</th>"
           "<th class=\"number\">Time</th></tr>\n" +
           rowsOf(page, "4", callRow) + "</table>\n</details>\n";
}

}  // namespace

std::string htmlOf(const Page& page) {
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\" />\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\" />\n<title>" +
        escaped(page.title) + "</title>\n<style>";
    html += kStyle;
    html += "</style>\n</head>\n<body>\n<main>\n<h1>" + escaped(page.title) +
            "</h1>\n<p class=\"lead\">" + escaped(page.lead) + "</p>\n" + figureOnPage(page.model);
    html += tilesOf(page);
    for (const PageChapter& chapter : page.chapters)
        html += chapterOf(chapter);
    html += comparisonOf(page);
    html += callsOf(page);
    html +=
        "<footer>Each call was made through the built library, as the host makes it. The pictures "
        "show pixels of the files on disk; the library wrote them as JPEG.</footer>\n</main>\n"
        "</body>\n</html>\n";
    return html;
}
