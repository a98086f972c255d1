// The library's names: a host binds them as plain text, and a name too many could clash with one of
// the host's own.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/Plugin.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;
using Names = std::vector<std::string>;

Names sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
}

Names exportList() {
    std::ifstream file(QUILLON_EXPORT_LIST);
    Names names;
    for (std::string name; std::getline(file, name);)
        names.push_back(name);
    return names;
}

bool isMangled(const std::string& name) {
    return name.starts_with("_Z");
}

bool isPlain(const std::string& name) {
    return !isMangled(name);
}

// The names in the dynamic symbol table, from lines of "address type name".
Names symbolsOf(const std::string& library) {
    std::FILE* listing = ::popen(("nm -D --defined-only '" + library + "'").c_str(), "r");
    std::string text;
    for (int byte; (byte = std::fgetc(listing)) != EOF;)
        text += static_cast<char>(byte);
    EXPECT_EQ(::pclose(listing), 0);

    Names names;
    std::istringstream words(text);
    for (std::string address, type, name; words >> address >> type >> name;)
        names.push_back(name);
    return names;
}

TEST(ExportList, HoldsThirtyFourPlainNames) {
    Names names = exportList();
    std::erase_if(names, isMangled);
    EXPECT_THAT(names, SizeIs(34));
    names = sorted(names);
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end()) << "a name twice";
}

TEST(ExportList, HoldsGetSubstrAndTheLibraryObject) {
    Names names = exportList();
    std::erase_if(names, isPlain);
    EXPECT_THAT(sorted(names),
                ElementsAre("_Z10get_substrPci",  // get_substr(char*, int)
                            "_ZN11QuillonPriv14HelloWorldPrivEPKc", "_ZN7Quillon10HelloWorldEPKc"));
}

// A function that only the header declares would be missing from the library without any error: the
// linker exports what the list names.
TEST(ExportList, HoldsEveryExportThatTheHeaderDeclares) {
    std::ifstream header(std::filesystem::path(QUILLON_EXPORT_LIST).replace_filename("Quillon.h"));
    const std::string declaration = "QUILLON_API ExportFunction ";
    Names declared;
    for (std::string line; std::getline(header, line);) {
        if (line.starts_with(declaration))
            declared.push_back(
                line.substr(declaration.size(), line.rfind(';') - declaration.size()));
    }
    Names names = exportList();
    std::erase_if(names, isMangled);
    EXPECT_EQ(sorted(declared), sorted(names));
}

TEST(Symbols, AreTheExportListAndNothingElse) {
    EXPECT_EQ(sorted(symbolsOf(QUILLON_LIBRARY)), sorted(exportList()));
}

TEST(Symbols, AreFoundByALoadingHost) {
    const Plugin plugin;
    for (const std::string& name : exportList())
        EXPECT_NO_THROW(plugin.symbol(name.c_str())) << name;
}

}  // namespace
