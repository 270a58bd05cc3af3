# shellcheck shell=bash
# Completion of varlo for bash. A scene stands only behind -i, so options are offered everywhere else.

_varlo() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} before=
    ((COMP_CWORD < 2)) || before=${COMP_WORDS[COMP_CWORD - 2]}
    local options='-? --help -o --output -i --input -c --camera -3ds --3ds -aaa --aaadaptive -t --thread
        -pqs --pqsize -aaq --aaquick -aan --aanone -j --jitter -r --resolution -w --width -h --height
        -tga --tga -bmp --bmp -ppm --ppm -tif --tiff -jpg --jpeg -png --png'

    compopt -o filenames 2>/dev/null # fails outside of a completion
    case $previous in
    -i | --input) mapfile -t COMPREPLY < <(compgen -f -X '!*.vlo' -- "$word"; compgen -d -- "$word") ;;
    -3ds | --3ds) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    -o | --output) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    -t | --thread) mapfile -t COMPREPLY < <(compgen -W '2 4 8' -- "$word") ;;
    -c | --camera | -aaa | --aaadaptive | -pqs | --pqsize | -w | --width | -h | --height) COMPREPLY=() ;;
    -r | --resolution) COMPREPLY=() ;;
    *)
        COMPREPLY=()
        [[ $before == -r || $before == --resolution ]] ||
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        ;;
    esac
}
complete -F _varlo varlo
