#!/bin/sh
# Times the overlay queries on the large generated dataset with the default
# parameters: wind 500 to 800, 2 km, six land-use categories (about a third
# of the country), protected areas ticked, the buffer question answered Yes.
# Usage: bench/bench_overlays.sh [BUILD_DIR] [DATA_DIR] [RUNS]
set -eu
build=${1:-$(dirname "$0")/../build-dev}
data=${2:-$build/bench-data/large}
runs=${3:-3}

if [ ! -f "$data/20_wind.shp" ]; then
    "$build/marlowan-gendata" --size large "$data" >/dev/null
fi

run() {
    query=$1
    shift
    i=0
    while [ "$i" -lt "$runs" ]; do
        i=$((i + 1))
        printf '%-30s ' "$query"
        # The machine is shared: the process's CPU time (loading included)
        # is steadier than the wall time of the run.
        /usr/bin/time -f "cpu %U" "$build/marlowan-batch" "$data" --query "$query" --min 500 --max 800 --timing "$@" \
            2>&1 >/dev/null |
            awk '/^query /{ q = $2 } /^repaint /{ r = $2 } /^cpu /{ c = $2 }
                 END { printf "query %s s  progress repaint %s s  without repaint %.3f s  process cpu %s s\n", q, r, q - r, c }'
    done
}

run "Best wind - protected areas"
run "Best wind + land use" --land-use SHRUBLAND --land-use GRASSLAND --land-use "HUMID AREAS" \
    --land-use WETLAND --land-use FOREST --land-use MANGROVES
run "Best wind + roads" --road-km 2 --answer yes
run "Best wind + transmission" --transmission-km 2 --answer yes
run "Best wind (all)" --road-km 2 --transmission-km 2 --answer yes --protected-areas keep --land-use SHRUBLAND --land-use GRASSLAND --land-use "HUMID AREAS" \
    --land-use WETLAND --land-use FOREST --land-use MANGROVES
