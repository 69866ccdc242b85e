#!/usr/bin/env bash
# Builds fancyhost and runs each effect on the bundled sample picture
# (data/samples/lake.jpg, drawn by `fancyhost sample`); the results go to
# out/demo/. Glass and The Knurl raise the sample's selection
# (data/samples/lake-mask.png).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build="$here/build"
out="$here/out/demo"
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j 2 --target fancyhost fancy
mkdir -p "$out"

# The configuration folder of the demo stays inside out/, not in the home folder.
export XDG_CONFIG_HOME="$out/config"
fancyhost="$build/bin/fancyhost"
sample="$here/data/samples/lake.jpg"
mask="$here/data/samples/lake-mask.png"
cp "$sample" "$out/original.jpg"

ran=0
failed=0
run() {
  local name=$1; shift
  if "$fancyhost" apply "$name" "$sample" "$out/$name.png" --quiet "$@"; then
    echo "demo: $name -> out/demo/$name.png"
    ran=$((ran + 1))
  else
    echo "demo: $name did not run (exit $?)" >&2
    failed=$((failed + 1))
  fi
}
run brushka
run tessaris
run glass --mask "$mask"
run knurl --mask "$mask"

echo "demo: $ran effects ran, $failed did not; results in $out"
[ "$ran" -gt 0 ]
