#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "files/CocoaFileBrowser.h"
#include "support/Faults.h"
#include "support/TempDir.h"

namespace fs = std::filesystem;

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

std::optional<std::string> taken(char* text) {
    const std::unique_ptr<char[]> owned(text);
    return owned == nullptr ? std::nullopt : std::optional<std::string>(owned.get());
}

TEST(CreateFolder, MakesAFolder) {
    const TempDir dir;
    EXPECT_TRUE(createFolder(dir.path("größe 高さ.maps").c_str()));
    EXPECT_TRUE(createFolder(dir.path("closed/").c_str()));
    EXPECT_TRUE(fs::is_directory(dir.path("größe 高さ.maps")));
    EXPECT_TRUE(fs::is_directory(dir.path("closed")));
}

TEST(CreateFolder, MakesNothingWhereSomethingExists) {
    const TempDir dir;
    EXPECT_FALSE(createFolder(dir.path().c_str()));
    EXPECT_FALSE(createFolder(dir.write("file", ByteList{1}).c_str()));
    EXPECT_EQ(readBytes(dir.path("file")), (ByteList{1}));
}

TEST(CreateFolder, MakesNoParents) {
    const TempDir dir;
    EXPECT_FALSE(createFolder(dir.path("missing/maps").c_str()));
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST(CreateFolder, NeedsAName) {
    EXPECT_FALSE(createFolder(nullptr));
    EXPECT_FALSE(createFolder(""));
}

TEST(GetSharedFolder, HoldsTheUsersFolders) {
    if (fs::is_directory("/home"))
        EXPECT_EQ(taken(getSharedFolder()), "/home");
    else
        EXPECT_EQ(taken(getSharedFolder()), std::nullopt);
}

// A desktop of the test's own: a PATH on which only the choosers lie that a test puts there, shell
// scripts that note their arguments, one a line.
class OpenFileBrowser : public testing::Test {
protected:
    OpenFileBrowser() { ::setenv("PATH", dir_.makeFolder("bin").c_str(), 1); }
    ~OpenFileBrowser() override { ::setenv("PATH", pathBefore_.c_str(), 1); }

    // A chooser that does what `script` says.
    void install(const std::string& name, const std::string& script) const {
        const std::string notes = dir_.path(name + ".arguments");
        const std::string program =
            dir_.write("bin/" + name,
                       "#!/bin/sh\nfor argument; do printf '%s\\n' \"$argument\"; "
                       "done > '" +
                           notes + "'\n" + script + "\n");
        fs::permissions(program, fs::perms::owner_all);
    }

    // The arguments of a chooser's last run; none when it did not run.
    Strings argumentsOf(const std::string& name) const {
        std::ifstream notes(dir_.path(name + ".arguments"));
        Strings arguments;
        for (std::string line; std::getline(notes, line);)
            arguments.push_back(line);
        return arguments;
    }

    std::optional<std::string> choose(const char* title = "Choose") const {
        return taken(runCocoaOpenFileBrowser(title));
    }

private:
    const TempDir dir_;
    const std::string pathBefore_ = ::getenv("PATH");
};

TEST_F(OpenFileBrowser, GivesTheChosenPath) {
    install("zenity", "printf '/maps/größe \"1\".vws\\n'");
    EXPECT_EQ(choose(), "/maps/größe \"1\".vws");
}

TEST_F(OpenFileBrowser, GivesAPathWithoutALineEnd) {
    install("zenity", "printf '/maps/a.vws'");
    EXPECT_EQ(choose(), "/maps/a.vws");
}

TEST_F(OpenFileBrowser, AsksForOneFileOfTheHostsTypes) {
    install("zenity", "printf '/maps/a.vws\\n'");
    choose("Choose a mesh");
    EXPECT_THAT(argumentsOf("zenity"), ElementsAre("--file-selection", "--title=Choose a mesh",
                                                   "--file-filter=*.vws *.VWS"));
}

// A title is text: nothing in it is run, expanded or taken for an option.
TEST_F(OpenFileBrowser, HandsOnAnyTitleAsItIs) {
    install("zenity", "printf '/maps/a.vws\\n'");
    install("touch", "");
    for (const char* title : {"--version", "-h", "it's \"quoted\"", "a; touch b",
                              "$(touch b) `touch b`", "*", "", "größe 高さ", "100 %s"}) {
        EXPECT_EQ(choose(title), "/maps/a.vws");
        EXPECT_THAT(argumentsOf("zenity"), Contains(std::string("--title=") + title));
        EXPECT_THAT(argumentsOf("touch"), IsEmpty());
    }
}

TEST_F(OpenFileBrowser, ACancelledDialogGivesNothingAndAsksNoOther) {
    install("zenity", "printf '/maps/a.vws\\n'; exit 1");
    install("kdialog", "printf '/maps/b.vws\\n'");
    EXPECT_EQ(choose(), std::nullopt);
    EXPECT_THAT(argumentsOf("kdialog"), IsEmpty());
}

TEST_F(OpenFileBrowser, ADialogThatDiesGivesNothing) {
    install("zenity", "printf '/maps/a.vws\\n'; kill -9 $$");
    EXPECT_EQ(choose(), std::nullopt);
}

TEST_F(OpenFileBrowser, AnEmptyAnswerGivesNothing) {
    install("zenity", "");
    EXPECT_EQ(choose(), std::nullopt);
    install("zenity", "printf '\\n'");
    EXPECT_EQ(choose(), std::nullopt);
}

// More than a pipe holds, so that the dialog waits until all is read.
TEST_F(OpenFileBrowser, AnAnswerLongerThanAnyPathGivesNothing) {
    install("zenity", "i=0; while [ $i -lt 2000 ]; do printf '%0100d' 0; i=$((i + 1)); done");
    EXPECT_EQ(choose(), std::nullopt);
}

TEST_F(OpenFileBrowser, AsksTheOtherDesktopsDialogWhereTheFirstIsMissing) {
    install("kdialog", "printf '/maps/b.vws\\n'");
    EXPECT_EQ(choose("Choose a mesh"), "/maps/b.vws");
    EXPECT_THAT(argumentsOf("kdialog"),
                ElementsAre("--title=Choose a mesh", "--getopenfilename", ".", "*.vws *.VWS"));
}

// Shells end with 127 when the program they should become is not there.
TEST_F(OpenFileBrowser, AsksTheOtherDesktopsDialogWhereTheFirstCannotStart) {
    install("zenity", "exit 127");
    install("kdialog", "printf '/maps/b.vws\\n'");
    EXPECT_EQ(choose(), "/maps/b.vws");
}

TEST_F(OpenFileBrowser, GivesNothingWhereNoDialogIsInstalled) {
    EXPECT_EQ(choose(), std::nullopt);
}

TEST_F(OpenFileBrowser, AsksNothingWithoutATitle) {
    install("zenity", "printf '/maps/a.vws\\n'");
    EXPECT_EQ(choose(nullptr), std::nullopt);
    EXPECT_THAT(argumentsOf("zenity"), IsEmpty());
}

// A timer of the host's whose signal comes every few milliseconds and interrupts what waits.
class Alarms {
public:
    Alarms() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, &before_);
        const itimerval often = {{0, 5000}, {0, 5000}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
    }
    Alarms(const Alarms&) = delete;
    Alarms& operator=(const Alarms&) = delete;
    ~Alarms() {
        const itimerval never{};
        ::setitimer(ITIMER_REAL, &never, nullptr);
        ::sigaction(SIGALRM, &before_, nullptr);
    }

private:
    struct sigaction before_ {};
};

// The dialog is slow to answer, and then to end.
TEST_F(OpenFileBrowser, SignalsToTheHostDoNotDisturbIt) {
    const std::string nap = "i=0; while [ $i -lt 20000 ]; do i=$((i + 1)); done; ";
    install("zenity", nap + "printf '/maps/a.vws\\n'; exec >&-; " + nap);
    const Alarms alarms;
    EXPECT_EQ(choose(), "/maps/a.vws");
}

// Nobody can tell then whether the user cancelled.
TEST_F(OpenFileBrowser, AHostThatLeavesItsChildrenToTheSystemGetsNothing) {
    install("zenity", "printf '/maps/a.vws\\n'");
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(choose(), std::nullopt);
    std::signal(SIGCHLD, before);
}

TEST_F(OpenFileBrowser, AHostWithoutDescriptorsToSpareGetsNothing) {
    install("zenity", "printf '/maps/a.vws\\n'");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto chosen = choose();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(chosen, std::nullopt);
    EXPECT_THAT(argumentsOf("zenity"), IsEmpty());
}

TEST_F(OpenFileBrowser, LeavesNoProcessAndNoDescriptorBehind) {
    install("zenity", "printf '/maps/a.vws\\n'");
    const auto before = openFiles();
    EXPECT_EQ(choose(), "/maps/a.vws");
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

}  // namespace
