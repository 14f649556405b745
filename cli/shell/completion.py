"""Completions for bash, zsh and fish."""

from tables import FILES, FOLDERS, common, named, own, takes_files, takes_verbs, verb_names

BASH = r'''# Completion of tessary for bash.
_tessary() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} verb="" each
    # bash cuts --format=obj into three words
    if [[ $word == = ]]; then
        word=""
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $each in
            @VERBS@) verb=$each; break ;;
        esac
    done
    local options="@COMMON@" words="" places=""
    case $verb in
@CASES@    esac
    case $verb:$before in
@VALUES@        *)
            if [[ $word == -* ]]; then
                words=$options places=""
            elif [[ -z $verb ]]; then
                words="@NAMES@"
            fi
            ;;
    esac
    # shellcheck disable=SC2207 # words of completions are without blanks
    COMPREPLY=($(compgen -W "$words" -- "$word"))
    if [[ -n $places ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -A "$places" -- "$word")
    fi
}
complete -F _tessary tessary
'''


def names_of(options):
    return " ".join(name for option in options for name in option["names"])


def bash_case(tables, verb):
    words = f"words=\"{' '.join(verb_names(tables))}\"" if takes_verbs(verb) else 'words=""'
    places = "places=file" if takes_files(verb) else 'places=""'
    return f'        {verb["name"]}) options+=" {names_of(own(verb))}" {words} {places} ;;\n'


def bash_value(verb, option):
    """What comes after an option that takes a value."""
    pattern = " | ".join(f"{verb}:{name}" for name in option["names"])
    places = {FILES: "file", FOLDERS: "directory"}.get(option["value"], "")
    return f'        {pattern}) words="{" ".join(option["choices"] or [])}" places="{places}" ;;\n'


def bash(tables):
    values = [bash_value("*", option) for option in common(tables) if option["value"]]
    values += [bash_value(verb["name"], option) for verb in tables["verbs"] for option in own(verb)
               if option["value"]]
    return (BASH.replace("@VERBS@", " | ".join(verb_names(tables))).replace("@NAMES@", " ".join(verb_names(tables)))
            .replace("@COMMON@", names_of(common(tables)))
            .replace("@CASES@", "".join(bash_case(tables, verb) for verb in tables["verbs"]))
            .replace("@VALUES@", "".join(values)))


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh_text(text):
    return text.replace("\\", "\\\\").replace("[", "\\[").replace("]", "\\]").replace(":", "\\:")


def zsh_option(option):
    action = {FILES: "_files", FOLDERS: "_files -/"}.get(option["value"], " ")
    if option["choices"]:
        action = f"({' '.join(option['choices'])})"
    value = f":{option['value']}:{action}" if option["value"] else ""
    names = option["names"]
    text = quoted(f"[{zsh_text(option['description'])}]{value}")
    if len(names) == 1:
        return names[0] + text
    return f"'({' '.join(names)})'{{{','.join(names)}}}{text}"


def zsh_verb(verb):
    lines = [zsh_option(option) for option in named(verb)]
    lines += ["'*:mesh file:_files'"] if takes_files(verb) else []
    lines += ["'1:verb:($verbs)'"] if takes_verbs(verb) else []
    joined = " \\\n                ".join(lines)
    return f"            {verb['name']})\n              _arguments \\\n                {joined}\n              ;;\n"


def zsh(tables):
    described = "".join(f"    {quoted(verb['name'] + ':' + zsh_text(verb['description']))}\n"
                        for verb in tables["verbs"])
    options = " \\\n    ".join(zsh_option(option) for option in common(tables))
    cases = "".join(map(zsh_verb, tables["verbs"])).replace("'1:verb:($verbs)'",
                                                            f"'1:verb:({' '.join(verb_names(tables))})'")
    return f'''#compdef tessary
# Completion of tessary for zsh.
_tessary() {{
  local context state state_descr line
  typeset -A opt_args
  local -a verbs
  verbs=(
{described}  )
  _arguments -C \\
    {options} \\
    '1: :->verb' '*:: :->rest'
  case $state in
    verb) _describe verb verbs ;;
    rest)
        case $line[1] in
{cases}        esac
      ;;
  esac
}}
_tessary "$@"
'''


def fish_option(condition, option):
    words = ["complete", "-c", "tessary", "-n", quoted(condition)]
    for name in option["names"]:
        words += ["-l", name[2:]] if name.startswith("--") else ["-s", name[1:]]
    if option["choices"]:
        words += ["-x", "-a", quoted(" ".join(option["choices"]))]
    elif option["value"] == FOLDERS:
        words += ["-x", "-a", quoted("(__fish_complete_directories)")]
    elif option["value"]:
        words += ["-r", "-F"] if option["value"] == FILES else ["-x"]
    return " ".join([*words, "-d", quoted(option["description"].replace("\n", " "))])


def fish(tables):
    names = " ".join(verb_names(tables))
    lines = ["# Completion of tessary for fish.", "complete -c tessary -f"]
    for verb in tables["verbs"]:
        lines.append(f"complete -c tessary -n '__fish_use_subcommand' -a {verb['name']} "
                     f"-d {quoted(verb['description'])}")
    lines += [fish_option("true", option) for option in common(tables)]
    for verb in tables["verbs"]:
        condition = f"__fish_seen_subcommand_from {verb['name']}"
        lines += [fish_option(condition, option) for option in own(verb)]
        if takes_files(verb):
            lines.append(f"complete -c tessary -n '{condition}' -F")
        if takes_verbs(verb):
            lines.append(f"complete -c tessary -n '{condition}' -a '{names}'")
    return "\n".join(lines) + "\n"
