#!/usr/bin/env bash
# Builds fancyhost and runs each working effect on the bundled sample picture.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build="$here/build"
out="$here/out/demo"
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j "$(nproc 2>/dev/null || echo 2)" --target fancyhost
mkdir -p "$out"
echo "demo: fancyhost is not built yet" >&2
exit 1
