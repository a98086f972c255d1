#include "calls/Report.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

Json jsonOf(float status) {
    const std::string text = statusText(status);
    return std::isfinite(status) ? Json::parse(text) : Json(text);
}

Json jsonOf(const CallRecord& call) {
    Json passed = Json::object();
    if (call.arguments.text) passed["text"] = *call.arguments.text;
    passed["value"] = call.arguments.value;
    if (call.arguments.buffer) passed["buffer1"] = *call.arguments.buffer;

    Json object = {{"export", call.name},
                   {"arguments", std::move(passed)},
                   {"status", jsonOf(call.result.status)},
                   {"success", call.meaning.success},
                   {"meaning", call.meaning.sentence}};
    if (call.result.text) object["text"] = *call.result.text;
    object["milliseconds"] = call.milliseconds;
    return object;
}

void printJson(const Json& value) {
    const std::string line = value.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void printSize(const std::string& path) {
    std::printf("%s  %s bytes\n", path.c_str(),
                std::to_string(std::filesystem::file_size(path)).c_str());
}

void Report::addFile(const std::string& path) {
    object_["files"].push_back({{"path", path}, {"bytes", std::filesystem::file_size(path)}});
}

void Report::print(Json object) const {
    object.update(object_);
    printJson(object);
}
