# shellcheck shell=bash
# Completion of varlo-import for bash.

_varlo_import() {
    local word=${COMP_WORDS[COMP_CWORD]} i
    local options='-o --output --list --geometry --at --turn --size --keep-size --up --smooth --flat --textures
        --colours --split --camera --view --no-floor --help --version'

    compopt -o filenames 2>/dev/null # fails outside of a completion
    # Behind an option with three values neither of them is completed.
    for i in 1 2 3; do
        ((COMP_CWORD < i)) || case ${COMP_WORDS[COMP_CWORD - i]} in
        --at | --turn) COMPREPLY=() && return ;;
        esac
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --up) mapfile -t COMPREPLY < <(compgen -W 'x y z' -- "$word") ;;
    --view) mapfile -t COMPREPLY < <(compgen -W 'front back left right top corner' -- "$word") ;;
    --textures) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    --size | --smooth | --colours | --split | --camera) COMPREPLY=() ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        ;;
    esac
}
complete -F _varlo_import varlo-import
