#!/bin/sh
# Renders every example, small, with 2, 4 and 8 threads, and holds the pictures against their checksums. Only
# a scene with random sampling has another one for each number of threads.
#
# Usage: checksums_test.sh VARLO [update]; with `update` the file `checksums` is written anew instead.
#
# The program evaluates its formulas as they are written, so its own arithmetic is the same on every machine.
# `pow`, `sin`, `cos` and `tan` are those of the C library, which may round their last bit in another way on
# a processor without fused multiply-add; a few scenes that differ on such a machine alone are no fault.
set -eu

export LC_ALL=C
varlo=$(realpath -- "$1")
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd)
examples=$here/../../examples
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The generated includes are made afresh, so the scenes are rendered where the source tree is not touched.
cp -r "$examples"/. "$work"
"$examples/generate" "$work"
cd "$work"
for scene in *.vlo *.set; do
    how=-i
    [ "${scene%.set}" = "$scene" ] || how=-3ds
    for threads in 2 4 8; do
        "$varlo" $how "$scene" -o "${scene%.*}-$threads" -ppm -r 160 120 -t $threads >log || {
            cat log
            echo "$scene cannot be rendered" >&2
            exit 1
        }
    done
done
sha256sum ./*.ppm | sed 's/ \.\// /' >found

if [ "${2:-}" = update ]; then
    cp found "$here/checksums"
    exit
fi
wrong=$(sort "$here/checksums" found | uniq -u | sed 's/.* //; s/\.ppm$//' | sort -u)
[ -z "$wrong" ] || {
    echo "These pictures are new or gone, or have changed (example and number of threads):" >&2
    echo "$wrong" >&2
    exit 1
}
