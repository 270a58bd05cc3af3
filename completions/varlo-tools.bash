# shellcheck shell=bash
# Completion of varlo-check, varlo-render, varlo-watch and varlo-film for bash.

# Offers files whose names fit one of these extended patterns, and folders.
_varlo_files() { # WORD PATTERN
    compopt -o filenames 2>/dev/null # fails outside of a completion
    mapfile -t COMPREPLY < <(compgen -f -X "!*.@($2)" -- "$1"; compgen -d -- "$1")
}

_varlo_tools() {
    local tool=${COMP_WORDS[0]##*/} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options
    local render='-w --width -h --height -r --resolution -aan --aanone -aaq --aaquick -aaa --aaadaptive -j --jitter
        -t --thread -pqs --pqsize -c --camera -tga --tga -bmp --bmp -ppm --ppm -png --png -jpg --jpeg -tif --tiff'
    shopt -q extglob || shopt -s extglob

    COMPREPLY=()
    case $tool in
    varlo-check)
        options='--help --no-early-object --no-dim-lamp --no-glowing-rim --no-stretched --no-jagged --no-far-include
            --no-low-index --no-unlit'
        ;;
    varlo-render)
        options="-o --output --open --quiet --help $render"
        case $previous in
        -o | --output) _varlo_files "$word" 'png|jpg|jpeg|tif|tiff|bmp|ppm|tga' && return ;;
        -t | --thread) mapfile -t COMPREPLY < <(compgen -W '2 4 8' -- "$word") && return ;;
        -w | --width | -h | --height | -r | --resolution | -aaa | --aaadaptive | -pqs | --pqsize | -c | --camera) return ;;
        esac
        ;;
    varlo-watch)
        options='--window --size --help'
        [[ $previous != --size ]] || return
        ;;
    varlo-film)
        options='-n --frames -r --rate -o --output --command --folder -j --jobs --sshlogin --slurm --assemble --help --'
        [[ " ${COMP_WORDS[*]:1:COMP_CWORD-1} " != *' -- '* ]] || options=$render
        case $previous in
        -o | --output) _varlo_files "$word" 'mp4|webm|gif' && return ;;
        --folder) mapfile -t COMPREPLY < <(compgen -d -- "$word") && return ;;
        --sshlogin) mapfile -t COMPREPLY < <(compgen -A hostname -- "$word") && return ;;
        --command) mapfile -t COMPREPLY < <(compgen -c -- "$word") && return ;;
        -n | --frames | -r | --rate | -j | --jobs) return ;;
        esac
        ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    elif [[ $tool == varlo-film ]]; then
        _varlo_files "$word" 'in'
    elif [[ $tool == varlo-render ]]; then
        compopt -o filenames 2>/dev/null # a model may have any name
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    else
        _varlo_files "$word" 'vlo|set'
    fi
}
complete -F _varlo_tools varlo-check varlo-render varlo-watch varlo-film
