#!/bin/sh
# Runs each fuzz target of a fuzz build for SECONDS, one after another, at
# low priority, each with the tags dictionary and a working corpus of its
# own (seeded from the generated corpora, kept between runs). Prints the
# executions of each target; fails when any target found a fault (its input
# is left as BUILD/fuzz/findings/TARGET-crash-*, the report at the end of
# its log), after running the others.
#   run-fuzzers.sh BUILD SECONDS [TARGET...]
set -eu
build=$1
seconds=$2
shift 2
targets=${*:-"atomtag trackfile roundtrip summary guidname import"}
here=$(cd "$(dirname "$0")" && pwd)
out=$build/fuzz
mkdir -p "$out/findings" "$out/logs"
status=0
for t in $targets; do
  bin=$out/${t}_fuzz
  [ -x "$bin" ] || { echo "fuzz: $bin not built" >&2; exit 1; }
  work=$out/corpus/$t
  mkdir -p "$work"
  log=$out/logs/$t.log
  # No allocation may be larger than a small multiple of the largest input
  # (64 KiB): -malloc_limit_mb turns one into a finding.
  if nice -n 10 "$bin" "$work" "$out/seeds/$t" -dict="$here/tags.dict" \
      -max_total_time="$seconds" -max_len=65536 -timeout=20 -rss_limit_mb=1024 \
      -malloc_limit_mb=64 -print_final_stats=1 \
      -artifact_prefix="$out/findings/$t-" >"$log" 2>&1; then
    result=ok
  else
    result=FAILED
    status=1
  fi
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  echo "fuzz: $t: $result, ${execs:-?} executions in ${seconds} s (log: $log)"
  [ $result = ok ] || grep -m 3 -E 'ERROR|SUMMARY|deadly signal' "$log" || true
done
exit $status
