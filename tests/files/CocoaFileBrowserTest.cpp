// The platform operations of macOS, with GNUstep's Foundation and a stand-in for AppKit's panel: the
// messages are the same, the runtime that takes them is another.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "files/CocoaFileBrowser.h"
#include "files/ObjcMessages.h"
#include "support/TempDir.h"

// GNUstep's own count of the objects that are alive.
extern "C" BOOL GSDebugAllocationActive(BOOL active);
extern "C" int GSDebugAllocationCount(Class counted);
extern "C" Class* GSDebugAllocationClassList();

// LeakSanitizer calls this: GNUstep and its runtime keep some memory for the life of the process.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
    return "leak:libobjc.so\nleak:libgnustep-base.so\n";
}

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

constexpr const char* kNotUtf8 = "\xC3(";

std::optional<std::string> taken(char* text) {
    const std::unique_ptr<char[]> owned(text);
    return owned == nullptr ? std::nullopt : std::optional<std::string>(owned.get());
}

int livingObjects() {
    const std::unique_ptr<Class, decltype(&std::free)> classes(GSDebugAllocationClassList(),
                                                               &std::free);
    int count = 0;
    for (const Class* one = classes.get(); *one != nullptr; ++one)
        count += GSDebugAllocationCount(*one);
    return count;
}

// How many more objects there are after ten calls than before. A first call fills what Foundation
// keeps.
template <typename Call>
int objectsLeftBy(Call call) {
    GSDebugAllocationActive(BOOL{1});
    call();
    const int before = livingObjects();
    for (int i = 0; i < 10; ++i)
        call();
    const int after = livingObjects();
    GSDebugAllocationActive(BOOL{0});
    return after - before;
}

TEST(LivingObjects, AreCountedUntilTheyAreReleased) {
    id kept = nullptr;
    const auto leak = [&] { kept = objc::send<id>(objc::classNamed("NSObject"), "new"); };
    EXPECT_EQ(objectsLeftBy(leak), 10);
    EXPECT_EQ(objectsLeftBy([&] { leak(), objc::send<void>(kept, "release"); }), 0);
}

TEST(CocoaCreateFolder, MakesOneNewFolder) {
    const TempDir dir;
    const std::string file = dir.write("file", ByteList{1});
    EXPECT_TRUE(createFolder(dir.path("größe 高さ.maps").c_str()));
    EXPECT_TRUE(createFolder(dir.path("closed/").c_str()));
    for (const std::string& path : {dir.path(), file, dir.path("missing/maps"), dir.path(kNotUtf8)})
        EXPECT_FALSE(createFolder(path.c_str())) << path;
    EXPECT_FALSE(createFolder(nullptr));
    EXPECT_FALSE(createFolder(""));
    EXPECT_THAT(dir.names(), ElementsAre("closed", "file", "größe 高さ.maps"));
    EXPECT_TRUE(fs::is_directory(dir.path("closed")));
    EXPECT_EQ(readBytes(file), ByteList{1});
}

TEST(CocoaCreateFolder, ReleasesWhatItCreates) {
    const TempDir dir;
    const std::string fresh = dir.path("größe");
    const std::string missing = dir.path("missing/maps");
    EXPECT_EQ(objectsLeftBy([&] { createFolder(fresh.c_str()), fs::remove(fresh); }), 0);
    EXPECT_EQ(objectsLeftBy([&] { createFolder(missing.c_str()); }), 0);
    EXPECT_EQ(objectsLeftBy([] { createFolder(kNotUtf8); }), 0);
}

// GNUstep's local domain has its users where Linux has them.
TEST(CocoaGetSharedFolder, HoldsTheUsersFoldersAndReleasesWhatItCreates) {
    EXPECT_EQ(taken(getSharedFolder()), "/home");
    EXPECT_EQ(objectsLeftBy([] { taken(getSharedFolder()); }), 0);
}

// The messages that a panel gets, in order, and what the user does with it.
struct Panel {
    Strings messages;
    long button = 1;  // OK; 0 is Cancel
    const char* chosen = "/maps/a.vws";
    bool available = true;
};
Panel panel;

std::string textOf(id string) {
    return objc::send<const char*>(string, "UTF8String");
}

std::string listed(id strings) {
    std::string all;
    const auto count = objc::send<unsigned long>(strings, "count");
    for (unsigned long i = 0; i < count; ++i)
        all.append(1, ' ').append(textOf(objc::send<id>(strings, "objectAtIndex:", i)));
    return all;
}

Class rootClass() {
    return reinterpret_cast<Class>(objc::classNamed("NSObject"));
}

// A method as a function of another type, through void(), which compilers accept without a warning.
template <typename To, typename From>
To* castMethod(From* method) {
    return reinterpret_cast<To*>(reinterpret_cast<void (*)()>(method));
}

// The methods of the stand-in.

id allocated(id self, SEL name) {
    if (!panel.available) return nullptr;
    panel.messages.push_back("alloc");
    const Class metaclass = object_getClass(reinterpret_cast<id>(rootClass()));
    return castMethod<id(id, SEL)>(class_getMethodImplementation(metaclass, name))(self, name);
}

void released(id self, SEL name) {
    panel.messages.push_back("release");
    castMethod<void(id, SEL)>(class_getMethodImplementation(rootClass(), name))(self, name);
}

void setTitle(id, SEL, id title) {
    panel.messages.push_back("title: " + textOf(title));
}

void setFlag(id, SEL name, BOOL yes) {
    panel.messages.push_back(sel_getName(name) + std::string(yes ? " YES" : " NO"));
}

long runFor(id, SEL, id types) {
    panel.messages.push_back("run for" + listed(types));
    return panel.button;
}

id chosenName(id, SEL) {
    return panel.chosen == nullptr ? nullptr : objc::string(panel.chosen);
}

template <typename Method>
void addMethod(Class to, const char* name, Method* method, const char* types) {
    class_addMethod(to, sel_registerName(name), castMethod<std::remove_pointer_t<IMP>>(method),
                    types);
}

void registerPanel() {
    const Class made = objc_allocateClassPair(rootClass(), "NSOpenPanel", 0);
    addMethod(object_getClass(reinterpret_cast<id>(made)), "alloc", allocated, "@@:");
    addMethod(made, "release", released, "v@:");
    addMethod(made, "setTitle:", setTitle, "v@:@");
    for (const char* name :
         {"setCanChooseDirectories:", "setCanChooseFiles:", "setAllowsMultipleSelection:"})
        addMethod(made, name, setFlag, "v@:C");
    addMethod(made, "runModalForTypes:", runFor, "q@:@");
    addMethod(made, "filename", chosenName, "@@:");
    objc_registerClassPair(made);
}

class CocoaOpenFileBrowser : public testing::Test {
protected:
    static void SetUpTestSuite() { registerPanel(); }
    CocoaOpenFileBrowser() { panel = {}; }

    static std::optional<std::string> choose(const char* title = "Choose") {
        return taken(runCocoaOpenFileBrowser(title));
    }
};

TEST_F(CocoaOpenFileBrowser, AsksForOneFileOfTheHostsTypes) {
    choose("Wähle ein Netz");
    EXPECT_THAT(panel.messages,
                ElementsAre("alloc", "title: Wähle ein Netz", "setCanChooseDirectories: NO",
                            "setCanChooseFiles: YES", "setAllowsMultipleSelection: NO",
                            "run for vws VWS", "release"));
}

TEST_F(CocoaOpenFileBrowser, ReturnsTheChosenPath) {
    panel.chosen = "/maps/größe \"1\".vws";
    EXPECT_EQ(choose(), "/maps/größe \"1\".vws");
    panel.chosen = nullptr;
    EXPECT_EQ(choose(), std::nullopt);
}

TEST_F(CocoaOpenFileBrowser, ReturnsNothingFromACancelledDialogAndReleasesIt) {
    for (const long button : {0L, 2L, -1L}) {
        panel.button = button;
        EXPECT_EQ(choose(), std::nullopt) << button;
        EXPECT_EQ(panel.messages.back(), "release") << button;
    }
}

TEST_F(CocoaOpenFileBrowser, ReturnsNothingWithoutAPanelOrATitleInUtf8) {
    EXPECT_EQ(choose(nullptr), std::nullopt);
    EXPECT_EQ(choose(kNotUtf8), std::nullopt);
    panel.available = false;
    EXPECT_EQ(choose(), std::nullopt);
    EXPECT_THAT(panel.messages, IsEmpty());
}

TEST_F(CocoaOpenFileBrowser, ReleasesWhatItCreates) {
    EXPECT_EQ(objectsLeftBy([] { choose(); }), 0);
    panel.button = 0;
    EXPECT_EQ(objectsLeftBy([] { choose(); }), 0);
    panel.available = false;
    EXPECT_EQ(objectsLeftBy([] { choose(); }), 0);
}

}  // namespace
