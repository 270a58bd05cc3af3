#!/bin/sh
# completion_test.sh SHELL: what this shell offers for varlo, held against the table that the program reads.
# shellcheck disable=SC2016 # what stands in single quotes is for the shell under test
set -eu
status=0

shell=$1
root=$(CDPATH='' cd -- "$(dirname -- "$0")/../.." && pwd)
command -v "$shell" >/dev/null || {
    echo "skipped: $shell is not installed"
    exit 77
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/here" "$work/here/folder"
cd -- "$work/here"
touch scene.vlo notes.txt model.set
export root work LC_ALL=C

# A completion of options starts at a dash, so the form /? has no place in it.
forms=$(sed -n 's/.*\.forms = {"\(-[^"]*\)", "\(-[^"]*\)"}.*/\1\n\2/p' "$root/src/core/args.cpp" | sort)
[ "$(printf '%s\n' "$forms" | wc -l)" -ge 40 ] || {
    echo "no table of options in src/core/args.cpp" >&2
    exit 1
}

# offers LINE prints what the shell offers behind it, one a line.
case $shell in
bash)
    offers() {
        bash -c '. "$root/completions/varlo.bash"
            COMP_WORDS=($1) COMP_CWORD=${#COMP_WORDS[@]}
            [[ $1 == *" " ]] && COMP_WORDS+=("") || ((COMP_CWORD--))
            _varlo && printf "%s\n" "${COMPREPLY[@]}"' bash "$1"
    }
    ;;
fish)
    export HOME="$work"
    offers() {
        fish -N -c '. $root/completions/varlo.fish; complete -C "$argv[1]"' -- "$1" | cut -f 1
    }
    ;;
zsh)
    # A completion needs the line editor, and that a terminal: here it has to be sound and know all forms.
    zsh -n "$root/completions/_varlo"
    for form in $forms; do
        tr '{,}' '\n' <"$root/completions/_varlo" | tr -d '\134' | grep -qxF -- "$form" || status=1
    done
    exit $status
    ;;
esac

expect() { # LINE WANTED, the latter one a line and sorted
    offers "$1" | sed 's|\(.\)/$|\1|; s/\\//' | sort -u >"$work/got"
    printf '%s\n' "$2" | diff -u - "$work/got" || {
        echo "$shell: wrong offers behind '$1', see above" >&2
        status=1
    }
}

# Some shells offer the long forms only behind their two dashes.
expect 'varlo --' "$(printf '%s\n' "$forms" | grep '^--')"
expect 'varlo -' "$forms"
expect 'varlo -i ' 'folder
scene.vlo'
expect 'varlo --thread ' '2
4
8'
expect 'varlo -3ds ' 'folder
model.set'
expect 'varlo -3ds n' 'notes.txt'
expect 'varlo -r ' '1280
1920
320
3840
640
800'
expect 'varlo -r 1920 10' '1080'
exit $status
