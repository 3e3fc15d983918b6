#!/bin/sh
# The demo (make demo): the built-in table of circuits written as map files,
# turned into track files with `tkk new`, checked, catalogued in a summary
# with its sorted sets and a catalogue page, listed, searched for the track
# nearest a GPS fix, one exported as GeoJSON and drawn as SVG, all into
# BUILD/demo/ (or the folder given second).
set -eu
build=${1:-build}
tkk=$build/tools/tkk/tkk
# A cross build runs what it built through its emulator: VEKTKK_RUN is then
# the command that does (e.g. "qemu-arm -L SYSROOT").
run=${VEKTKK_RUN:-}
out=${2:-$build/demo}
tab=$(printf '\t')

rm -rf "$out"
mkdir -p "$out/maps" "$out/tracks" "$out/summary"
$run "$build/tools/demo/demo_circuits" "$out/maps" >"$out/circuits.txt"
layouts=$(grep -c '"LineString"' "$out"/maps/*.geojson | awk -F: '{ n += $2 } END { print n }')
echo "Built-in table: $(wc -l <"$out/circuits.txt") circuits, $layouts layouts, as map files in $out/maps/"

: >"$out/tracks.txt"
while IFS="$tab" read -r name type; do
  file=$($run "$tkk" new "$out/maps/$name.geojson" -o "$out/tracks" --type "$type" --width 15)
  echo "$name$tab${file%%  *}" >>"$out/tracks.txt"
done <"$out/circuits.txt"
echo "tkk new           $(ls "$out/tracks" | wc -l) track files in $out/tracks/ (which is which: $out/tracks.txt)"

status=0
$run "$tkk" check "$out"/tracks/*.tkk >"$out/check.txt" || status=$?
[ "$status" -le 1 ] || { echo "tkk check could not run: see $out/check.txt" >&2; exit 1; }
echo "tkk check         $(grep -c ': passed$' "$out/check.txt") passed, $(grep -c ': FAILED$' "$out/check.txt") failed (details: $out/check.txt)"

$run "$tkk" summary build "$out/tracks" -o "$out/summary" --html >/dev/null
$run "$tkk" summary list "$out/summary/summary.bin" >"$out/summary-list.txt"
echo "tkk summary       $(tail -n 1 "$out/summary-list.txt"), sorted sets and catalogue page in $out/summary/ (list: $out/summary-list.txt)"

# A GPS fix in the paddock at Monza.
$run "$tkk" nearest "$out/summary/summary.bin" 45.6185 9.2838 --limit 3 >"$out/nearest.txt"
$run "$tkk" nearest "$out/summary/summary.bin" 45.6185 9.2838 --limit 1 --json >"$out/nearest.json"
field() { sed -n "s/^ *\"$1\": \"*\([^\",]*\).*/\1/p" "$out/nearest.json"; }
circuit=$(awk -F"$tab" -v f="$(field fileName).tkk" '$2 ~ "/" f "$" { print $1 }' "$out/tracks.txt")
echo "tkk nearest       to the GPS fix 45.6185, 9.2838: $circuit ($(field name), $(field nation)), $(field distanceM | cut -d. -f1) m away ($out/nearest.txt)"

silverstone=$(awk -F"$tab" '$1 == "silverstone" { print $2 }' "$out/tracks.txt")
$run "$tkk" info "$silverstone" >"$out/silverstone.txt"
$run "$tkk" export "$silverstone" --format geojson -o "$out/silverstone.geojson"
echo "tkk export        Silverstone Circuit, both layouts, as GeoJSON: $out/silverstone.geojson"
$run "$tkk" render "$silverstone" -o "$out/silverstone.svg"
echo "tkk render        its Grand Prix layout as a map: $out/silverstone.svg"
echo "Catalogue page:   open file://$(cd "$out/summary" && pwd)/index.html in a browser"
