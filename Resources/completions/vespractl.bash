# Bash completion for vespractl.
# The bash that macOS ships is too old for it.
((BASH_VERSINFO[0] >= 4)) || return 0

_vespractl()
{
    local cur=${COMP_WORDS[COMP_CWORD]} word words=() i candidates
    COMPREPLY=()
    # The words before this one that are no options; a command to run completes as its own.
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ ${words[0]-} == run && ($word == -- || $word != -*) ]]; then
            [[ $word == -- ]] && ((i++))
            if ((i >= COMP_CWORD)); then
                mapfile -t COMPREPLY < <(compgen -c -- "$cur")
            elif declare -F _command_offset >/dev/null; then
                _command_offset "$i"
            else
                compopt -o default
            fi
            return
        fi
        [[ $word == --home ]] && { ((i++)); continue; }
        [[ $word == -* ]] || words+=("$word")
    done
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} == --home ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$cur")
        return
    fi

    case "${words[*]}" in
        "") candidates="status start stop toggle extend keep-awake cancel display closed-lid run wait settings doctor
            machine hooks simulate --version --help" ;;
        status) candidates="--json --watch --help" ;;
        start) candidates="timer until unlimited agent --display --no-display --closed-lid --no-closed-lid --help" ;;
        "start "*) candidates="--display --no-display --closed-lid --no-closed-lid --help" ;;
        display) candidates="on off --help" ;;
        closed-lid) candidates="on off set-up remove --help" ;;
        run) candidates="-- --display --closed-lid --help" ;;
        settings) candidates="list get set --help" ;;
        "settings list") candidates="--json --help" ;;
        "settings get") candidates="$(_vespractl_settings) --json --help" ;;
        "settings set") candidates=$(_vespractl_settings) ;;
        "settings set "*" "*) ;;
        "settings set "*) candidates=$(_vespractl_settings "${words[2]}") ;;
        doctor) candidates="--json --help" ;;
        machine) candidates="get set --help" ;;
        "machine get") candidates="--json --help" ;;
        "machine set"*) _vespractl_machine "$cur"; return ;;
        hooks) candidates="status preview connect disconnect --home --help" ;;
        "hooks status") candidates="--json --home --help" ;;
        "hooks preview" | "hooks connect" | "hooks disconnect") candidates="claude codex --home --help" ;;
        simulate) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;
        *) candidates="--help" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
}

# The keys of the settings, or the values of one; the program that is typed knows them.
_vespractl_settings()
{
    "${COMP_WORDS[0]/#\~\//$HOME/}" settings complete "$@" 2>/dev/null | cut -f 1
}

# KEY=VALUE; the shell takes "=" for a word of its own.
_vespractl_machine()
{
    local cur=$1 key="" candidates=""
    if [[ $cur == "=" ]]; then
        key=${COMP_WORDS[COMP_CWORD - 1]} cur=""
    elif [[ ${COMP_WORDS[COMP_CWORD - 1]} == "=" ]]; then
        key=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $key in
        battery) candidates="none 5 20 50 100" ;;
        charger | screen) candidates="on off" ;;
        lid) candidates="open closed" ;;
        display) candidates="internal external" ;;
        thermal) candidates="nominal fair serious critical" ;;
        helper) candidates="ready notInstalled awaitingApproval failed noBuiltInDisplay unsignedBuild refusing outdated
            stuck" ;;
        appearance) candidates="light dark" ;;
        contrast) candidates="normal high" ;;
        motion) candidates="full reduced" ;;
        sleep) candidates="now" ;;
        shortcut) candidates="pressed" ;;
        press) candidates="session.endingSoon/session.extend agents.finished/agents.cancelForcedAction" ;;
        "")
            compopt -o nospace
            candidates="battery= charger= lid= display= screen= thermal= helper= appearance= contrast= motion= sleep=
                shortcut= update= press="
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
}

complete -F _vespractl vespractl
