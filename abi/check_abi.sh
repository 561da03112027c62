#!/bin/sh
# Compares a shared library of this build with its ABI baseline (abi/*.abi.gz).
#   check_abi.sh BASELINE LIBRARY HEADERS_DIR
# Passes when nothing the baseline holds changed incompatibly, or when the
# library's SONAME differs from the baseline's (the version was raised: make a
# new baseline, see abi/README.md). Fails with abidiff's report, which names
# every removed or changed symbol and type.
set -u
baseline=$1 library=$2 headers=$3
command -v abidiff >/dev/null || { echo "check_abi.sh: abidiff missing (abigail-tools)" >&2; exit 1; }
[ -f "$baseline" ] || { echo "check_abi.sh: no baseline $baseline" >&2; exit 1; }
# Baselines are kept gzip'ed.
plain=$(mktemp)
trap 'rm -f "$plain"' EXIT
gzip -dc "$baseline" >"$plain" || exit 1
baseline=$plain
soname=$(readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
baseSoname=$(sed -n "s/.*soname='\([^']*\)'.*/\1/p" "$baseline" | head -n 1)
if [ "$soname" != "$baseSoname" ]; then
    echo "check_abi.sh: $soname replaces $baseSoname: the ABI may change; refresh the baseline"
    exit 0
fi
abidiff --no-show-locs --drop-private-types --headers-dir2 "$headers" "$baseline" "$library"
status=$?
# abidiff's status bits: 1 error, 2 usage, 4 ABI change, 8 incompatible change.
if [ $((status & 3)) -ne 0 ]; then
    echo "check_abi.sh: abidiff could not compare (status $status)" >&2
    exit 1
fi
if [ $((status & 8)) -ne 0 ]; then
    echo "check_abi.sh: $soname breaks its ABI above; raise SYSMGT_LIB_SOVERSION or undo the change" >&2
    exit 1
fi
[ $((status & 4)) -ne 0 ] && echo "check_abi.sh: compatible additions only"
exit 0
