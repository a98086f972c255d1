#include "calls/ScriptReader.h"

#include "calls/ShellWords.h"
#include "terminal/Failure.h"

std::optional<ScriptLine> ScriptReader::next() {
    for (std::string line; std::getline(in_, line);) {
        ++number_;
        try {
            std::vector<std::string> words = shellWords(line);
            if (!words.empty()) return ScriptLine{number_, callFrom(std::move(words))};
        } catch (const WrongUsage& wrong) {
            throw WrongUsage(place(number_) + wrong.what());
        }
    }
    return std::nullopt;
}

std::string ScriptReader::place(std::size_t number) const {
    return name_ + ':' + std::to_string(number) + ": ";
}
