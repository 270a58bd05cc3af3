#!/bin/sh
# Renders every example, at 80 x 60, with 2, 4 and 8 threads, and holds the pictures against `checksums`: a row for
# each example, with a sum for each number of threads. They differ in a scene with random sampling alone.
#
# Usage: checksums_test.sh VARLO [update | THREADS...]
#
# With THREADS only the pictures with these numbers of threads are rendered. With `update` the file `checksums` is
# written anew instead.
#
# The program evaluates its formulas as they are written, so its own arithmetic is the same on every machine.
# `pow`, `sin`, `cos` and `tan` are those of the C library, which may round their last bit in another way on
# a processor without fused multiply-add; a few scenes that differ on such a machine alone are no fault.
set -eu

export LC_ALL=C
varlo=$(realpath -- "$1")
shift
update=${1:-}
[ "$update" != update ] || shift
[ $# -gt 0 ] || set -- 2 4 8
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd)
examples=$here/../../examples
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The generated includes are made afresh, so the scenes are rendered where the source tree is not touched.
cp -r "$examples"/. "$work"
importer=$(dirname -- "$varlo")/tools/import/varlo-import
[ ! -x "$importer" ] || export VARLO_IMPORT="$importer"
"$examples/generate" "$work"
cd "$work"
cp models/studio.* . # the file of another writer
[ -e teapot.inc ] || rm teatime.vlo # without that program there is no model to show
for scene in *.vlo *.set; do
    how=-i
    [ "${scene%.set}" = "$scene" ] || how=-3ds
    row=${scene%.*}
    for threads; do
        "$varlo" $how "$scene" -o picture -ppm -r 80 60 -t "$threads" >log || {
            cat log
            echo "$scene cannot be rendered" >&2
            exit 1
        }
        row="$row $(sha256sum <picture.ppm | cut -c -16)"
    done
    echo "$row"
done >found
sort -o found found # the models among the scenes

if [ "$update" = update ]; then
    cp found "$here/checksums"
    exit
fi
awk -v threads="$*" '
    BEGIN { count = split(threads, wanted); column[2] = 2; column[4] = 3; column[8] = 4 }
    { row = $1; for (i = 1; i <= count; i++) row = row " " $column[wanted[i]]; print row }' "$here/checksums" >expected
[ -e teapot.inc ] || sed -i '/^teatime /d' expected
diff expected found || {
    echo "These pictures are new or gone, or have changed; in columns, those with threads: $*" >&2
    exit 1
}
