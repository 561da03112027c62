#!/bin/sh
# Fails naming each public header that opens a namespace to its includer.
status=0
for header in "$@"; do
    if grep -n '^[[:space:]]*using[[:space:]]\+namespace' "$header"; then
        echo "header_rules: $header: 'using namespace' in a public header" >&2
        status=1
    fi
done
[ "$#" -gt 0 ] || { echo "header_rules: no header given" >&2; status=1; }
exit $status
