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
for f in summary.bin summary.txt by-name-nation.bin by-name-nation.latlon.idx by-name-nation.guid.idx \
    by-name.bin by-name.latlon.idx by-name.guid.idx by-position.bin by-position.name.idx \
    by-position.guid.idx by-guid.bin by-guid.name.idx by-guid.position.idx index.html; do
  [ -s "$out/summary/$f" ] || fail "summary/$f is missing"
done
[ "$(wc -c <"$out/summary/summary.bin")" -eq $((14 * 128)) ] || fail "summary.bin should hold 14 variants"
[ "$(ls "$out"/summary/*.geojson | wc -l)" -eq 13 ] || fail "expected a GeoJSON export per track"
[ "$(grep -c '<tr class="variant"' "$out/summary/index.html")" -eq 14 ] || fail "expected 14 catalogue rows"
tail -n 1 "$out/summary-list.txt" | grep -qx '14 variants' || fail "summary-list.txt is not tkk summary list"
head -n 2 "$out/nearest.txt" | grep -q 'IT' || fail "nearest.txt should find Monza first"
grep -q 'monza (Grand Prix, IT)' "$build/demo-check.log" || fail "the demo should name the nearest track"
grep -q '^Catalogue page: *open file://.*/index.html' "$build/demo-check.log" || fail "where is the page?"
[ "$(wc -l <"$build/demo-check.log")" -le 10 ] || fail "the demo should say what it did in a few lines"
echo "demo output as described"
