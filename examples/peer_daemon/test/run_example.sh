#!/bin/sh
# Installs the libraries' components into a staging prefix, builds the LED
# daemon against that prefix alone and runs it beside the channel manager.
#   run_example.sh BUILD_DIR SOURCE_DIR WORK_DIR TOOLCHAIN_FILE LAUNCHER RUNNER COMPILER SANITIZER_FLAGS
set -eu
build=$1 source=$2 work=$3 toolchain=$4 launch=$5 runner=$6 compiler=${7:-} sanitize=${8:-}
rm -rf "$work"
mkdir -p "$work"
for component in datacom datacom_dev tarnevelclient tarnevelclient_dev; do
    cmake --install "$build" --prefix "$work/stage" --component "$component" >/dev/null
done
# A 32-bit consumer is given 64-bit file offsets and time_t by both files.
if [ -n "$toolchain" ]; then
    files=$(find "$work/stage" -name DataComLibTargets.cmake -o -name datacom.pc)
    [ -n "$files" ] || { echo "run_example.sh: no CMake package or .pc file installed" >&2; exit 1; }
    for file in $files; do
        grep -q "_FILE_OFFSET_BITS=64" "$file" && grep -q "_TIME_BITS=64" "$file" ||
            { echo "run_example.sh: $file lacks _FILE_OFFSET_BITS=64 or _TIME_BITS=64" >&2; exit 1; }
    done
fi
# Only the staging prefix: nothing of the build tree is on the example's paths.
set -- -DCMAKE_PREFIX_PATH="$work/stage" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_CXX_FLAGS="$sanitize" -DCMAKE_EXE_LINKER_FLAGS="$sanitize"
[ -n "$compiler" ] && set -- "$@" -DCMAKE_CXX_COMPILER="$compiler"
[ -n "$toolchain" ] && set -- "$@" -DCMAKE_TOOLCHAIN_FILE="$toolchain"
command -v ninja >/dev/null && set -- "$@" -G Ninja
cmake -S "$source/examples/peer_daemon" -B "$work/build" "$@" >"$work/configure.log" 2>&1 ||
    { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build" >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }
# The same daemon through pkg-config (host builds): the .pc files find their prefix themselves.
if [ -z "$toolchain" ]; then
    export PKG_CONFIG_PATH="$work/stage/lib/pkgconfig:$(ls -d "$work"/stage/lib/*/pkgconfig 2>/dev/null | tr '\n' :)"
    "${compiler:-c++}" -std=c++17 $sanitize -o "$work/led_daemon_pc" "$source/examples/peer_daemon/led_daemon.cpp" \
        $(pkg-config --cflags --libs "datacom >= 2.0" tarnevelclient) -Wl,-rpath,"$work/stage/lib" ||
        { echo "run_example.sh: the pkg-config build failed" >&2; exit 1; }
fi
LED_DAEMON="$launch $work/build/led_daemon" exec $launch "$runner"
