#!/usr/bin/env bash
# Makes the README's pictures in docs/ anew: the main window with a query
# result, the Results Table, the Print Map window and the printed page, all
# drawn by the program itself without a screen.
#   tools/make-screenshots.sh [BUILD_DIR]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release > /dev/null
cmake --build "$build" -j"$(nproc)" --target marlowan-screenshots marlowan-gendata
[ -f "$build/sample/20_wind.shp" ] || "$build/marlowan-gendata" --size small --seed 1 "$build/sample"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
QT_QPA_PLATFORM=offscreen "$build/marlowan-screenshots" "$build/sample" "$work"
pdftoppm -r 60 -png -singlefile "$work/printed-page.pdf" "$work/printed-page"
mkdir -p "$root/docs"
for f in main-window results-table print-window printed-page; do cp "$work/$f.png" "$root/docs/$f.png"; done
echo "written: docs/main-window.png docs/results-table.png docs/print-window.png docs/printed-page.png"
