#!/bin/sh
# Renders every example, at 80 x 60, with 2, 4 and 8 threads, and holds the pictures against their checksums. Only
# a scene with random sampling has another one for each number of threads.
#
# Usage: checksums_test.sh VARLO [THREADS...]
#        checksums_test.sh VARLO update
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
update=no
[ "${1:-}" != update ] || { update=yes && shift; }
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
[ -e teapot.inc ] || rm teatime.vlo # without that program there is no model to show
for scene in *.vlo *.set; do
    how=-i
    [ "${scene%.set}" = "$scene" ] || how=-3ds
    for threads; do
        "$varlo" $how "$scene" -o "${scene%.*}-$threads" -ppm -r 80 60 -t "$threads" >log || {
            cat log
            echo "$scene cannot be rendered" >&2
            exit 1
        }
    done
done
sha256sum ./*.ppm | sed 's/ \.\// /' >found

if [ $update = yes ]; then
    cp found "$here/checksums"
    exit
fi
for threads; do
    grep -e "-$threads\.ppm" "$here/checksums"
done >expected
[ -e teapot.inc ] || sed -i '/ teatime-/d' expected
wrong=$(sort expected found | uniq -u | sed 's/.* //; s/\.ppm$//' | sort -u)
[ -z "$wrong" ] || {
    echo "These pictures are new or gone, or have changed (example and number of threads):" >&2
    echo "$wrong" >&2
    exit 1
}
