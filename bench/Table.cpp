#include "Table.h"

#include <algorithm>
#include <cmath>

#include "Text.h"

namespace {

constexpr double kMiB = 1024.0 * 1024.0;

bool isMet(const Result& result) {
    return result.target == 0.0 || result.ratio <= result.target;
}

const Result* limitOf(const Line& line) {
    const auto found =
        std::find_if(line.results.begin(), line.results.end(),
                     [](const Result& result) { return result.role == Role::kLimit; });
    return found == line.results.end() ? nullptr : &*found;
}

// Whether a target asks for less time than the file traffic takes by itself.
bool isBelowLimit(const Line& line, const Result& result) {
    const Result* const limit = limitOf(line);
    return limit != nullptr && result.role == Role::kPeer && result.target != 0.0 &&
           result.target * limit->ratio < result.ratio;
}

std::string ratioOf(const Line& line, const Result& result) {
    const std::string ratio = text("%.2f", result.ratio);
    if (result.target == 0.0) return ratio;
    return ratio + text(" (%s %g%s)", isMet(result) ? "≤" : "not ≤", result.target,
                        isBelowLimit(line, result) ? ", below the limit" : "");
}

// The ratios to all contenders of one role.
std::string ratiosTo(const Line& line, Role role) {
    std::string cell;
    for (const Result& result : line.results) {
        if (result.role != role) continue;
        if (!cell.empty()) cell += "; ";
        if (role == Role::kPeer) cell += result.name + ' ';
        cell += ratioOf(line, result);
    }
    return cell.empty() ? "-" : cell;
}

std::string memoryOf(const Line& line) {
    if (!line.peak) return "-";
    const bool met = line.peak->taken <= line.peak->allowed;
    if (std::isinf(line.peak->allowed)) return text("%.1f", line.peak->taken / kMiB);
    return text("%.1f (%s %.0f)", line.peak->taken / kMiB, met ? "≤" : "not ≤",
                line.peak->allowed / kMiB);
}

TableRow rowOf(const Line& line) {
    const Result& quillon = line.results.front();
    return {line.job,
            text("%.1f ms", quillon.cpu * 1e3),
            text("%.0f %s/s", line.amount / quillon.cpu, line.unit),
            ratiosTo(line, Role::kLimit),
            ratiosTo(line, Role::kPeer),
            memoryOf(line),
            isMet(line) ? "met" : "not met",
            ratiosTo(line, Role::kBefore)};
}

bool hasBefore(const Line& line) {
    return std::any_of(line.results.begin(), line.results.end(),
                       [](const Result& result) { return result.role == Role::kBefore; });
}

std::string jsonOf(const Result& result) {
    return text(R"({"name": "%s", "cpu": %.6g, "wall": %.6g, "ratio": %.4g, "target": %g})",
                result.name.c_str(), result.cpu, result.wall, result.ratio, result.target);
}

std::string jsonOf(const Line& line) {
    std::string out =
        text(R"(  {"job": "%s", "unit": "%s", "amount": %.6g, "met": %s, )", line.job.c_str(),
             line.unit, line.amount, isMet(line) ? "true" : "false");
    if (line.peak && std::isfinite(line.peak->allowed))
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
    std::vector<TableRow> rows{
        {"job", "CPU", "rate", "/ limit", "/ peer", "memory, MiB", "targets", "/ before"}};
    for (const Line& line : lines)
        rows.push_back(rowOf(line));
    if (!hasBefore(lines.front())) {
        for (TableRow& row : rows)
            row.pop_back();
    }
    return aligned(rows);
}

std::string jsonOf(const std::vector<Line>& lines) {
    std::string out = "[\n";
    for (std::size_t i = 0; i < lines.size(); ++i)
        out += jsonOf(lines[i]) + (i + 1 < lines.size() ? ",\n" : "\n");
    return out + "]\n";
}
