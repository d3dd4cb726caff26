# Bash completion for vespra.
# The bash that macOS ships is too old for it.
((BASH_VERSINFO[0] >= 4)) || return 0

_vespra()
{
    local cur=${COMP_WORDS[COMP_CWORD]} candidates
    COMPREPLY=()
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --timer) candidates="15m 30m 1h 2h 4h 8h" ;;
        --grace) candidates="0s 1m 2m 5m 15m" ;;
        --platform) candidates="linux macos simulated" ;;
        --until | --only) candidates="" ;;
        --render) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$cur"); return ;;
        --settings) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$cur"); return ;;
        *) candidates="--headless --timer --until --unlimited --agent --idle --grace --display --closed-lid --settings
            --platform --render --only --version --help" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
}

complete -F _vespra vespra
