#!/bin/sh
# completion_test.sh SHELL VARLO-IMPORT: the completion of this shell and the manual page have the options that the
# usage text has, no more and no fewer.
# shellcheck disable=SC2016 # what stands in single quotes is for the shell under test
set -eu

shell=$1 program=$2
root=$(CDPATH='' cd -- "$(dirname -- "$0")/../../.." && pwd)
command -v "$shell" >/dev/null || {
    echo "skipped: $shell is not installed"
    exit 77
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export root LC_ALL=C HOME="$work"

"$program" --help | grep -o -e '^ *-[^ ,]*' -e ', --[a-z-]*' | tr -d ' ,' | sort >"$work/wanted"
sed -n 's/^\.It \(Fl [^ ].*\)/\1/p' "$root/man/varlo-import.1" | tr ',' '\n' |
    sed -n 's/^ *Fl \(-*[a-z-]*\).*/-\1/p' | sort >"$work/manual"
diff "$work/wanted" "$work/manual" || {
    echo 'the manual page has other options than the usage text, see above' >&2
    exit 1
}

case $shell in
bash)
    bash -c '. "$root/completions/varlo-import.bash"
        COMP_WORDS=(varlo-import -) COMP_CWORD=1
        _varlo_import && printf "%s\n" "${COMPREPLY[@]}"'
    ;;
fish)
    fish -N -c '. $root/completions/varlo-import.fish; complete -C "varlo-import -"' | cut -f 1
    fish -N -c '. $root/completions/varlo-import.fish; complete -C "varlo-import --"' | cut -f 1
    ;;
zsh)
    zsh -n "$root/completions/_varlo-import"
    # A completion needs the line editor, and that a terminal: here it has to be sound and know all forms.
    sed -n 's/^ *\(.*\)\[.*/\1/p' "$root/completions/_varlo-import" | grep -o -e '-[a-z-]*' | grep '[a-z]'
    ;;
esac | sort -u >"$work/got"
diff "$work/wanted" "$work/got" || {
    echo "$shell: other options than the usage text, see above" >&2
    exit 1
}
