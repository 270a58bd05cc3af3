#!/bin/sh
# Renders every example without random sampling, small, and holds the pictures against their checksums.
#
# Usage: checksums_test.sh VARLO [update]; with `update` the file `checksums` is written anew instead.
#
# The program evaluates its formulas as they are written, so its own arithmetic is the same on every machine.
# `pow`, `sin`, `cos` and `tan` are those of the C library, which may round their last bit in another way on
# a processor without fused multiply-add; a few scenes that differ on such a machine alone are no fault.
set -eu

export LC_ALL=C
varlo=$1
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd)
examples=$here/../../examples
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The generated includes are made afresh, so the scenes are rendered where the source tree is not touched.
cp "$examples"/*.vlo "$examples"/*.inc "$work"
"$examples/generate" "$work"
cd "$work"
for scene in *.vlo; do
    ! head -n 1 "$scene" | grep -q '^; *random' || continue
    "$varlo" -i "$scene" -o "${scene%.vlo}" -ppm -r 160 120 -t 2 >log || {
        cat log
        echo "$scene cannot be rendered" >&2
        exit 1
    }
done
sha256sum ./*.ppm | sed 's/ \.\// /' >found

if [ "${2:-}" = update ]; then
    cp found "$here/checksums"
    exit
fi
wrong=$(sort "$here/checksums" found | uniq -u | sed 's/.* //; s/ppm$/vlo/' | sort -u)
[ -z "$wrong" ] || {
    echo "These scenes are new or gone, or their pictures have changed:" >&2
    echo "$wrong" >&2
    exit 1
}
