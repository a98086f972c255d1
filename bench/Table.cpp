#include "Table.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "Text.h"

namespace {

constexpr double kMiB = 1024.0 * 1024.0;

constexpr const char* kNone = "-";

bool isMet(const Result& result) {
    return result.target == 0.0 || result.ratio <= result.target;
}

bool isMet(const Line& line) {
    return line.peak.taken <= line.peak.allowed &&
           std::ranges::all_of(line.results, [](const Result& result) { return isMet(result); });
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
    return cell.empty() ? kNone : cell;
}

std::string memoryOf(const Line& line) {
    const auto [taken, allowed] = line.peak;
    if (std::isinf(allowed)) return text("%.1f", taken / kMiB);
    return text("%.1f (%s %.0f)", taken / kMiB, taken <= allowed ? "≤" : "not ≤", allowed / kMiB);
}

std::string rateOf(const Line& line) {
    const double rate = line.amount / line.results.front().cpu;
    return text(rate < 10.0 ? "%.1f %s/s" : "%.0f %s/s", rate, line.unit.c_str());
}

// What the export takes beyond the limit, for each byte that the limit moves.
std::string computingOf(const Line& line) {
    const auto limit = std::ranges::find(line.results, Role::kLimit, &Result::role);
    if (limit == line.results.end() || limit->bytes == 0.0) return kNone;
    return text("%.3f", (line.results.front().cpu - limit->cpu) * 1e9 / limit->bytes);
}

TableRow rowOf(const Line& line) {
    const Result& quillon = line.results.front();
    return {line.job,
            text("%.1f ms", quillon.cpu * 1e3),
            rateOf(line),
            ratiosTo(line, Role::kLimit),
            computingOf(line),
            ratiosTo(line, Role::kSources),
            ratiosTo(line, Role::kPeer),
            memoryOf(line),
            isMet(line) ? "met" : "not met",
            ratiosTo(line, Role::kBefore)};
}

nlohmann::ordered_json jsonOf(const Line& line) {
    nlohmann::ordered_json json{
        {"job", line.job}, {"unit", line.unit}, {"amount", line.amount}, {"met", isMet(line)}};
    if (std::isfinite(line.peak.allowed)) {
        json["memory"] = line.peak.taken;
        json["memoryAllowed"] = line.peak.allowed;
    }
    for (const Result& result : line.results)
        json["contenders"].push_back({{"name", result.name},
                                      {"cpu", result.cpu},
                                      {"wall", result.wall},
                                      {"ratio", result.ratio},
                                      {"target", result.target},
                                      {"bytes", result.bytes}});
    return json;
}

void dropEmptyColumns(std::vector<TableRow>& rows) {
    for (std::size_t column = rows.front().size(); column-- > 0;) {
        const auto isEmpty = [=](const TableRow& row) { return row[column] == kNone; };
        if (!std::all_of(rows.begin() + 1, rows.end(), isEmpty)) continue;
        for (TableRow& row : rows)
            row.erase(row.begin() + static_cast<std::ptrdiff_t>(column));
    }
}

}  // namespace

std::string tableOf(const std::vector<Line>& lines) {
    std::vector<TableRow> rows{{"job", "CPU", "rate", "/ limit", "beyond it, ns/byte", "/ sources",
                                "/ peer", "memory, MiB", "targets", "/ before"}};
    for (const Line& line : lines)
        rows.push_back(rowOf(line));
    dropEmptyColumns(rows);
    return aligned(rows);
}

std::string jsonOf(const std::vector<Line>& lines) {
    nlohmann::ordered_json json;
    for (const Line& line : lines)
        json.push_back(jsonOf(line));
    return json.dump(2) + '\n';
}
