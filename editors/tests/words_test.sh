#!/bin/sh
# words_test.sh TABLES holds the words of the manual pages and the editors against those that the program TABLES
# prints.
set -eu
export LC_ALL=C
tables=$(realpath -- "$1")
cd -- "$(dirname -- "$0")/../.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$tables" >"$work/tables"
status=0

same() { # WHAT WANTED GOT
    printf '%s\n' "$2" >"$work/wanted"
    printf '%s\n' "$3" | diff -u "$work/wanted" - || {
        echo "wrong words in $1, see above" >&2
        status=1
    }
}

same editors/keywords.txt \
    "$(sed -n 's/^keyword //p' "$work/tables")" \
    "$(sed -n -e 's/ statement$//p' -e 's/ parameter$//p' -e 's/ reserved$//p' editors/keywords.txt)"

without() { # PREFIX PAGE prints the words of standard input that do not stand behind PREFIX in PAGE.
    while read -r word; do
        sed 's/\\&//g' "$2" | grep -qE -- "$1$word( |\$)" || echo "$word"
    done
}
same man/varlo.5 '' "$(sed -n 's/^\([a-z_]*\) .*/\1/p' editors/keywords.txt | without '(Ic|,) ' man/varlo.5)"
same man/varlo.1 '' "$(sed -n 's/^option -//p' "$work/tables" | sed 's/?/[?]/' | without 'Fl ' man/varlo.1)"

list() { # KIND VIM-GROUP TEXTMATE-SCOPE
    wanted=$(sed -n "s/ $1\$//p" editors/keywords.txt)
    vim=editors/vim/syntax/varlo.vim
    same "$vim" "$wanted" "$(sed -n "s/^syntax keyword $2 //p" $vim | tr ' ' '\n')"
    json=editors/vscode/syntaxes/varlo.tmLanguage.json
    same $json "$wanted" "$(sed -n "/\"$3\"/{n;s/.*(\([a-z_|]*\)).*/\1/p;}" $json | tr '|' '\n')"
}
list statement varloStatement keyword.control.varlo
list parameter varloParameter support.type.property-name.varlo
list reserved varloReserved invalid.illegal.reserved.varlo

exit $status
