#include "Table.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "Text.h"

namespace {

constexpr double kMiB = 1024.0 * 1024.0;

bool isMet(const Result& result) {
    return result.target == 0.0 || result.ratio <= result.target;
}

bool isMet(const Line& line) {
    return line.peak.taken <= line.peak.allowed &&
           std::ranges::all_of(line.results, [](const Result& result) { return isMet(result); });
}

// Returns null if the line has none of that role.
const Result* findResult(const Line& line, Role role) {
    const auto found = std::ranges::find(line.results, role, &Result::role);
    return found == line.results.end() ? nullptr : &*found;
}

// Whether a target allows less time than the file traffic takes by itself.
bool isBelowLimit(const Line& line, const Result& result) {
    const Result* const limit = findResult(line, Role::kLimit);
    return limit != nullptr && result.role == Role::kPeer &&
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
    const auto [taken, allowed] = line.peak;
    if (std::isinf(allowed)) return text("%.1f", taken / kMiB);
    return text("%.1f (%s %.0f)", taken / kMiB, taken <= allowed ? "≤" : "not ≤", allowed / kMiB);
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
                                      {"target", result.target}});
    return json;
}

}  // namespace

std::string tableOf(const std::vector<Line>& lines) {
    std::vector<TableRow> rows{
        {"job", "CPU", "rate", "/ limit", "/ peer", "memory, MiB", "targets", "/ before"}};
    for (const Line& line : lines)
        rows.push_back(rowOf(line));
    if (findResult(lines.front(), Role::kBefore) == nullptr) {
        for (TableRow& row : rows)
            row.pop_back();
    }
    return aligned(rows);
}

std::string jsonOf(const std::vector<Line>& lines) {
    nlohmann::ordered_json json;
    for (const Line& line : lines)
        json.push_back(jsonOf(line));
    return json.dump(2) + '\n';
}
