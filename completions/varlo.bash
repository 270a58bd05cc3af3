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
    -3ds | --3ds) # settings files and folders; where there is none, any file
        mapfile -t COMPREPLY < <(compgen -f -X '!*.set' -- "$word"; compgen -d -- "$word")
        ((${#COMPREPLY[@]} > 0)) || mapfile -t COMPREPLY < <(compgen -f -- "$word")
        ;;
    -o | --output) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    -t | --thread) mapfile -t COMPREPLY < <(compgen -W '2 4 8' -- "$word") ;;
    -c | --camera | -aaa | --aaadaptive | -pqs | --pqsize | -w | --width | -h | --height) COMPREPLY=() ;;
    -r | --resolution) mapfile -t COMPREPLY < <(compgen -W '320 640 800 1280 1920 3840' -- "$word") ;;
    *)
        case $before:$previous in
        -r:* | --resolution:*) # the height that goes with the width
            local heights='240 480 600 720 1080 2160'
            case $previous in
            320) heights=240 ;; 640) heights='480 360' ;; 800) heights='600 450' ;;
            1280) heights='720 960' ;; 1920) heights='1080 1440' ;; 3840) heights=2160 ;;
            esac
            mapfile -t COMPREPLY < <(compgen -W "$heights" -- "$word")
            ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word") ;;
        esac
        ;;
    esac
}
complete -F _varlo varlo
