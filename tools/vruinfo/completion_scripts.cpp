#include "completion_scripts.h"

#include <array>

#include "command.h"

namespace vruinfo::tool
{
namespace
{

struct Script {
    const char* shell;
    const char* text;
};

// In bash a word may be cut at "=" and ":": the line is taken apart here, and what stands before the cut is taken off
// the candidates again. Names with blanks are given with backslashes, and taken so.
constexpr char kBash[] = R"script(# bash completion for vruinfo; made by "vruinfo completion bash"
_vruinfo() {
    local line=${COMP_LINE:0:COMP_POINT} current=${2//\\/} word candidate
    local -a words
    # shellcheck disable=SC2162 # backslashes are taken as in the line
    read -a words <<<"$line"
    case $line in *[[:blank:]]) words+=('') ;; esac
    word=${words[${#words[@]}-1]}
    case $current in [:=]) current='' ;; esac
    COMPREPLY=()
    while IFS= read -r candidate; do
        candidate=$(printf %q "${candidate#"${word%"$current"}"}")
        case $candidate in */) compopt -o nospace ;; esac
        COMPREPLY+=("${candidate//\\@/@}")
    done < <(command "${words[0]}" completion bash --words="$(IFS=$'\n'; printf %s "${words[*]}")" 2>/dev/null)
}
complete -o bashdefault -o default -F _vruinfo vruinfo
)script";

constexpr char kZsh[] = R"script(#compdef vruinfo
# zsh completion for vruinfo; made by "vruinfo completion zsh"
_vruinfo() {
    local -a typed found items
    typed=("${(@Q)words[1,CURRENT]}")
    found=("${(@f)$(command "${typed[1]}" completion zsh --words="${(F)typed}" 2>/dev/null)}")
    found=("${(@)found:#}")
    if (( ! ${#found} )); then
        _files
        return
    fi
    items=("${(@M)found:#*/}")
    found=("${(@)found:#*/}")
    compadd -S '' -- "${(@)items}"
    compadd -- "${(@)found}"
}
if [ "$funcstack[1]" = _vruinfo ]; then
    _vruinfo "$@"
else
    compdef _vruinfo vruinfo
fi
)script";

constexpr std::array<Script, 2> kScripts = {{{"bash", kBash}, {"zsh", kZsh}}};

} // namespace

QStringList shellNames()
{
    QStringList names;
    for (const Script& script : kScripts)
        names.append(text(script.shell));
    return names;
}

std::optional<QString> completionScript(const QString& shell)
{
    for (const Script& script : kScripts) {
        if (text(script.shell) == shell)
            return text(script.text);
    }
    return std::nullopt;
}

} // namespace vruinfo::tool
