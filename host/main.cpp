#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
    CLI::App app("Calls the Quillon plug-in the way Morvane does.");
    CLI11_PARSE(app, argc, argv);
    return 0;
}
