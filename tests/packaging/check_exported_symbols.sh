#!/bin/sh
# The shared library exports its public interface and nothing of its
# internals: the eight plain functions under their C names, no LogEvento.
set -eu
lib=$1
# Names without their version (name@@VEKTKK_1).
symbols=$(nm -D --defined-only "$lib" | awk '{sub(/@.*/, "", $3); print $3}')
fail=0
for name in tkkIsTipoVek tkkIsDev tkkGenerateGuid tkkDecodeGuid tkkGenerateGuidNomeFile \
            tkkDecodeGuidNomeFile tkkGetNomeFileFromGuid tkkGetGuidFromNomeFile \
            c_fattore_conversione; do
  if ! printf '%s\n' "$symbols" | grep -qx "$name"; then
    echo "missing export: $name"; fail=1
  fi
done
# Internals: the reporting function, the internal namespace, anonymous
# namespaces, and the standard library's templates instantiated inside.
leaked=$(printf '%s\n' "$symbols" | grep -E 'LogEvento|vektkk|_GLOBAL__N|^_ZNSt|^_ZNKSt|^_ZSt' || true)
if [ -n "$leaked" ]; then
  echo "internal symbols exported:"; printf '%s\n' "$leaked"; fail=1
fi
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
if [ "$soname" != "libvektkk.so.1" ]; then
  echo "SONAME is '$soname', expected libvektkk.so.1"; fail=1
fi
exit $fail
