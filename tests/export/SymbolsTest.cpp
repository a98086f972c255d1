// The library's names: a host binds them as plain text, and a name too many could clash with one of
// the host's own.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

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

TEST(ExportList, HoldsThirtyFourPlainNamesGetSubstrAndTheLibraryObject) {
    Names plain = exportList();
    std::erase_if(plain, isMangled);
    EXPECT_THAT(plain, SizeIs(34));
    EXPECT_THAT(std::set<std::string>(plain.begin(), plain.end()), SizeIs(34)) << "a name twice";
    Names mangled = exportList();
    std::erase_if(mangled, std::not_fn(isMangled));
    EXPECT_THAT(sorted(mangled),
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
#ifdef __APPLE__
    GTEST_SKIP() << "on a Mac nm prints another format; scripts/check-macos compares the symbols "
                    "of what ships";
#endif
    EXPECT_EQ(sorted(symbolsOf(QUILLON_LIBRARY)), sorted(exportList()));
}

}  // namespace
