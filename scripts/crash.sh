#!/bin/bash
# Kills whole runs at random moments (kill -9) and checks what is left. Prints the figures that
# docs/reliability.md quotes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/crash.sh [--kills N] [--products N] [--orders N] [--seed S] [--build DIR]

  --kills N     runs to kill (default 200)
  --products N  products of the company that is converted (default 3000)
  --orders N    its sales orders, and as many purchase orders (default 600)
  --seed S      the company and the moments (default: of the clock; printed)
  --build DIR   build folder with the programs (default build; made when missing)

The company is kept in memory (/dev/shm) if possible: a kill loses nothing from the system's buffers.
USAGE
}

kills=200 products=3000 orders=600 build=build seed=$RANDOM
parse_options "kills= products= orders= seed= build=" "$@"

if [ ! -x "$build/bin/taksavaihe" ]; then
    # shellcheck disable=SC2086
    install_packages $packages_build $packages_test
    cmake -G Ninja -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=ON
    cmake --build "$build" --target taksavaihe zavdb
fi
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then
    export TMPDIR=/dev/shm
fi

echo "== $kills kills (seed $seed)"
python3 tests/acceptance/crash.py "$build/bin" --kills "$kills" --seed "$seed" \
    --products "$products" --orders "$orders"
