#!/bin/sh
# Query timings on the large generated dataset. Run from anywhere after
# building marlowan-gendata, marlowan-batch and bench_query in build-dev:
#   bench/run.sh [BUILD_DIR] [DATA_DIR]
set -e
BUILD=${1:-$(dirname "$0")/../build-dev}
DATA=${2:-/tmp/marlowan-bench-large}
SOLAR="10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)"

if [ ! -f "$DATA/20_wind.shp" ]; then
    echo "generating the large dataset in $DATA"
    "$BUILD/marlowan-gendata" --size large "$DATA"
fi

echo "== Wind by Power Density, panel defaults (500 to 800)"
"$BUILD/bench_query" "$DATA" wind 5
echo "== Wind by Power Density, 200 to Max"
"$BUILD/bench_query" "$DATA" wind 5 200 Max
echo "== Best Solar X kWh/m2/day, 5 to 6.5"
"$BUILD/bench_query" "$DATA" solar 5 5 6.5

echo "== marlowan-batch, whole process"
"$BUILD/marlowan-batch" "$DATA" --query "Wind by Power Density" --quiet --timing >/dev/null
"$BUILD/marlowan-batch" "$DATA" --query "Best Solar X kWh/m2/day" --solar-resource "$SOLAR" \
    --min 5 --max 6.5 --quiet --timing >/dev/null

echo "== the overlay queries beside their floors (CPU time is the steadier figure)"
"$BUILD/bench_floor" "$DATA" 3

echo "== marlowan-prepare: national wind raster, whole large recipe"
"$BUILD/bench_prepare"
