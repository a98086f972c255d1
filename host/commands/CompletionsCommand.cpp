// quillon completions: the scripts by which shells ask for candidates.

#include <cstdio>

#include "commands/Commands.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon completions bash >~/.local/share/bash-completion/completions/quillon
  quillon completions zsh >~/.zfunc/_quillon
  quillon completions fish >~/.config/fish/completions/quillon.fish
)";

// Each asks quillon for candidates and offers files if there are none.
constexpr const char* kBash = R"script(# Completions of quillon for bash.
_quillon() {
    mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _quillon quillon
)script";

constexpr const char* kZsh = R"script(#compdef quillon
# Completions of quillon for zsh.
_quillon() {
    local -a candidates
    candidates=(${(f)"$($words[1] complete "${(@)words[2,CURRENT]}" 2>/dev/null)"})
    if (( $#candidates )); then compadd -a candidates; else _files; fi
}
# As an autoloaded function it is called at once; read by a startup file it is only made known.
if [[ $funcstack[1] == _quillon ]]; then _quillon "$@"; else compdef _quillon quillon; fi
)script";

constexpr const char* kFish = R"script(# Completions of quillon for fish.
complete -c quillon -a '(quillon complete (commandline -opc)[2..-1] "$(commandline -ct)" 2>/dev/null)'
)script";

std::string scriptFor(const std::string& shell) {
    return shell == "bash" ? kBash : shell == "zsh" ? kZsh : kFish;
}

}  // namespace

void addCompletionsCommand(CommandLine& line) {
    const auto shell = std::make_shared<std::string>();
    CLI::App& command =
        line.add("completions", "Print the completions for a shell", kExamples, [shell] {
            std::fputs(scriptFor(*shell).c_str(), stdout);
            return true;
        });
    line.oneOf(CommandLine::addArgument(command, "SHELL", *shell, ""), {"bash", "zsh", "fish"});
}
