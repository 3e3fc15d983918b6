#!/bin/sh
# Runs the demo into a folder of its own and checks that it holds what the
# README says the demo leaves in build/demo/.
set -eu
build=$1
out=$build/demo-check
"$(dirname "$0")/run-demo.sh" "$build" "$out" >"$build/demo-check.log"
fail() { echo "demo: $*" >&2; exit 1; }
[ "$(ls "$out"/maps/*.geojson | wc -l)" -eq 13 ] || fail "expected 13 map files"
[ "$(ls "$out"/tracks/*.tkk | wc -l)" -eq 13 ] || fail "expected 13 track files"
[ "$(wc -l <"$out/tracks.txt")" -eq 13 ] || fail "tracks.txt should list 13 tracks"
grep -q ': passed$' "$out/check.txt" || fail "check.txt holds no result"
grep -q '"role": "outline"' "$out/silverstone.geojson" || fail "silverstone.geojson has no outline"
[ "$(grep -c '"role": "outline"' "$out/silverstone.geojson")" -eq 2 ] || fail "expected 2 layouts"
grep -q '<svg' "$out/silverstone.svg" || fail "silverstone.svg is not an SVG"
grep -q 'Silverstone Circuit' "$out/silverstone.txt" || fail "silverstone.txt is not tkk info"
[ "$(wc -l <"$build/demo-check.log")" -le 8 ] || fail "the demo should say what it did in a few lines"
echo "demo output as described"
