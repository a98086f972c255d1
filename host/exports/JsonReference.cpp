#include "exports/JsonReference.h"

#include <nlohmann/json.hpp>

#include "exports/Arguments.h"
#include "exports/Groups.h"
#include "exports/Reference.h"

namespace {

using Json = nlohmann::ordered_json;  // members stay in the order in which they were set

// Rises when a member is renamed or goes, or means something else.
constexpr int kFormat = 1;

void setNumbers(Json& object, const Numbers& numbers) {
    if (!numbers.choices.empty()) {
        object["choices"] = numbers.choices;
    } else {
        object["least"] = numbers.least;
        if (numbers.most) object["most"] = *numbers.most;
    }
    object["others"] = numbers.others;
    if (numbers.replacement) object["replacement"] = *numbers.replacement;
}

Json objectOf(const Export& entry, const Argument& argument) {
    Json object = {{"position", argument.position},
                   {"name", argument.name},
                   {"role", argument.role},
                   {"meaning", argument.meaning}};
    if (argument.role != std::string_view("number")) return object;
    if (entry.valueDetails != nullptr) object["details"] = entry.valueDetails;
    if (entry.numbers) setNumbers(object, *entry.numbers);
    return object;
}

Json argumentListOf(const Export& entry) {
    Json list = Json::array();
    for (const Argument& argument : argumentsOf(entry))
        list.push_back(objectOf(entry, argument));
    return list;
}

// `member` names the number: the status itself, or that of the first tile.
Json objectOf(const Export& entry, const StatusMeaning& row, const char* member) {
    return {{member, row.status},
            {"success", row.isSuccess()},
            {"causes", namesOf(row.causes)},
            {"sentence", sentenceOf(entry, row)}};
}

Json statusesOf(const Export& entry) {
    Json list = Json::array();
    for (const StatusMeaning& row : entry.statuses)
        list.push_back(objectOf(entry, row, "status"));
    if (entry.writesTiles) list.push_back(objectOf(entry, kTileNotWritten, "firstStatus"));
    return list;
}

Json objectOf(const Export& entry) {
    Json object = {{"name", entry.name},
                   {"purpose", entry.purpose},
                   {"arguments", argumentListOf(entry)},
                   {"writes", entry.writes},
                   {"statuses", statusesOf(entry)}};
    if (entry.countOne != nullptr)
        object["count"] = {
            {"one", entry.countOne}, {"many", entry.countMany}, {"whole", entry.countIsWhole}};
    if (entry.interrupted != nullptr) object["interrupted"] = entry.interrupted->sentence;
    if (entry.throws != nullptr) object["throws"] = entry.throws;
    object["example"] = {{"command", entry.example}, {"prints", printedBy(entry)}};
    object["check"] = entry.next;
    return object;
}

Json objectOf(const ExportGroup& group) {
    Json object = {{"title", group.title}, {"about", group.lead}};
    for (const Export& entry : group.exports)
        object["exports"].push_back(objectOf(entry));
    return object;
}

}  // namespace

std::string jsonReference() {
    Json reference = {
        {"version",
         {{"format", kFormat}, {"interface", static_cast<int>(quillon_status::kVersion)}}}};
    for (const ExportGroup& group : exportGroups())
        reference["groups"].push_back(objectOf(group));
    return reference.dump(2) + '\n';
}
