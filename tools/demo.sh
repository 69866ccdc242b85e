#!/usr/bin/env bash
# Builds fancyhost and runs each effect on the bundled sample picture
# (data/samples/lake.jpg, drawn by `fancyhost sample`); the results go to
# out/demo/. Glass and The Knurl raise the sample's selection, a disc and a
# ring. Their slopes lie just outside the selected shape and the host keeps
# the result only where the selection is, so the demo hands them the
# feathered selection (data/samples/lake-mask-soft.png, drawn by
# `fancyhost sample lake.jpg 640 426 --mask lake-mask-soft.png --mask-feather 24`):
# half of its 24-pixel edge lies outside the shape and keeps part of the
# slopes. Through the hard-edged one (lake-mask.png) they show little more
# than a tint.
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
mask="$here/data/samples/lake-mask-soft.png"
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
run tessaris --group p6m
run glass --mask "$mask" --preset Wet
run knurl --mask "$mask" --preset "Mesa Dropoff"

echo "demo: $ran effects ran, $failed did not; results in $out"
[ "$ran" -gt 0 ]
