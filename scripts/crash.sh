#!/bin/bash
# Kills whole runs at random moments (kill -9) and checks what is left; then simulates power losses
# during recorded runs. Prints the figures quoted in docs/reliability.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/crash.sh [--kills N] [--products N] [--orders N] [--seed S] [--build DIR]

  --kills N     number of runs to kill, and of power losses (default 200)
  --products N  products of the company (default 3000)
  --orders N    sales orders, and as many purchase orders (default 600)
  --seed S      for the company and the moments (default: random; printed)
  --build DIR   build folder with the programs (default build; built if missing)

The company is created in memory (/dev/shm) if possible: a kill loses nothing from the system's
buffers. Losing those is what the second part simulates.
USAGE
}

kills=200 products=3000 orders=600 build=build seed=$RANDOM
parse_options "kills= products= orders= seed= build=" "$@"

if [ ! -x "$build/bin/fault_tests" ] || [ ! -x "$build/bin/taksavaihe" ]; then
    # shellcheck disable=SC2086
    install_packages $packages_build $packages_test
    cmake -G Ninja -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=ON
    cmake --build "$build" --target taksavaihe zavdb fault_tests
fi
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then
    export TMPDIR=/dev/shm
fi

echo "== $kills kills (seed $seed)"
python3 tests/acceptance/crash.py "$build/bin" --kills "$kills" --seed "$seed" \
    --products "$products" --orders "$orders"
echo "== $kills power losses (seed $seed)"
TAKSAVAIHE_LOSSES=$kills TAKSAVAIHE_SEED=$seed QT_QPA_PLATFORM=offscreen \
    "$build/bin/fault_tests" --gtest_filter='PowerLoss.*'
