#include "Table.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>

namespace {

// printf into a string.
[[gnu::format(printf, 1, 2)]] std::string text(const char* format, ...) {
    std::array<char, 256> buffer{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return buffer.data();
}

constexpr double kMiB = 1024.0 * 1024.0;

bool isMet(const Result& result) {
    return result.target == 0.0 || result.ratio <= result.target;
}

std::string ratioOf(const Result& result) {
    const std::string ratio = text("%.2f", result.ratio);
    if (result.target == 0.0) return ratio;
    return ratio + text(" (%s %g)", isMet(result) ? "≤" : "not ≤", result.target);
}

// The ratios to all contenders of one role.
std::string ratiosTo(const Line& line, Role role) {
    std::string cell;
    for (const Result& result : line.results) {
        if (result.role != role) continue;
        if (!cell.empty()) cell += "; ";
        if (role == Role::kPeer) cell += result.name + ' ';
        cell += ratioOf(result);
    }
    return cell.empty() ? "-" : cell;
}

std::string memoryOf(const Line& line) {
    if (!line.peak) return "-";
    const bool met = line.peak->taken <= line.peak->allowed;
    return text("%.1f (%s %.0f)", line.peak->taken / kMiB, met ? "≤" : "not ≤",
                line.peak->allowed / kMiB);
}

using Row = std::vector<std::string>;

Row rowOf(const Line& line) {
    const Result& quillon = line.results.front();
    return {line.job,
            text("%.1f ms", quillon.cpu * 1e3),
            text("%.0f %s/s", line.amount / quillon.cpu, line.unit),
            ratiosTo(line, Role::kLimit),
            ratiosTo(line, Role::kPeer),
            ratiosTo(line, Role::kLiteral),
            ratiosTo(line, Role::kBefore),
            memoryOf(line),
            isMet(line) ? "met" : "not met"};
}

// Characters as a terminal shows them: bytes that continue a character do not count.
std::size_t lengthOf(std::string_view cell) {
    return static_cast<std::size_t>(
        std::count_if(cell.begin(), cell.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string aligned(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], lengthOf(row[i]));
    }
    std::string out;
    for (std::size_t line = 0; line < rows.size(); ++line) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            out += "| " + rows[line][i] + std::string(widths[i] - lengthOf(rows[line][i]) + 1, ' ');
        out += "|\n";
        if (line > 0) continue;
        for (const std::size_t width : widths)
            out += '|' + std::string(width + 2, '-');
        out += "|\n";
    }
    return out;
}

std::string jsonOf(const Result& result) {
    return text(R"({"name": "%s", "cpu": %.6g, "wall": %.6g, "ratio": %.4g, "target": %g})",
                result.name.c_str(), result.cpu, result.wall, result.ratio, result.target);
}

std::string jsonOf(const Line& line) {
    std::string out =
        text(R"(  {"job": "%s", "unit": "%s", "amount": %.6g, "met": %s, )", line.job.c_str(),
             line.unit, line.amount, isMet(line) ? "true" : "false");
    if (line.peak)
        out += text(R"("memory": %.0f, "memoryAllowed": %.0f, )", line.peak->taken,
                    line.peak->allowed);
    out += "\"contenders\": [\n";
    for (std::size_t i = 0; i < line.results.size(); ++i)
        out += "    " + jsonOf(line.results[i]) + (i + 1 < line.results.size() ? ",\n" : "]}");
    return out;
}

}  // namespace

bool isMet(const Line& line) {
    const bool memory = !line.peak || line.peak->taken <= line.peak->allowed;
    return memory && std::all_of(line.results.begin(), line.results.end(),
                                 [](const Result& result) { return isMet(result); });
}

std::string tableOf(const std::vector<Line>& lines) {
    std::vector<Row> rows{{"job", "CPU", "rate", "/ limit", "/ peer", "/ literal", "/ before",
                           "memory, MiB", "targets"}};
    for (const Line& line : lines)
        rows.push_back(rowOf(line));
    return aligned(rows);
}

std::string jsonOf(const std::vector<Line>& lines) {
    std::string out = "[\n";
    for (std::size_t i = 0; i < lines.size(); ++i)
        out += jsonOf(lines[i]) + (i + 1 < lines.size() ? ",\n" : "\n");
    return out + "]\n";
}
