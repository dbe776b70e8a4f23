#!/bin/bash
# Cross-builds Qt for Windows from Debian's source package, and the sqlite3 library.
set -euo pipefail
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
# shellcheck source=scripts/packages.sh
. "$here/../../scripts/packages.sh"

usage() {
    cat <<'USAGE'
Usage: packaging/windows/build-qt.sh TARGET [WORK-FOLDER]

Builds Qt 6.4.2 (Core, Gui, Widgets, PrintSupport, Sql, Test; no network, no OpenGL) and sqlite3 for
64-bit Windows with mingw-w64 into TARGET/qt-shared and TARGET/deps. Takes about 15 minutes on two
processors, 4 GB in WORK-FOLDER (default: a temporary folder, removed at the end), and root or sudo
for the packages. Can be run again after a failure when WORK-FOLDER was named.
USAGE
}

case "${1:-}" in
    "" | --help | -h)
        usage
        exit 0
        ;;
esac
target=$(realpath -m "$1")
if [ $# -ge 2 ]; then
    work=$(realpath -m "$2")
else
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
fi

# shellcheck disable=SC2086,SC2154
install_packages $packages_windows_qt
sudo=""
[ "$(id -u)" -eq 0 ] || sudo=sudo

# Source packages come from the mirrors of the machine's packages.
sources=/etc/apt/sources.list.d/taksavaihe-sources.sources
# shellcheck disable=SC2016  # a format string of apt
if ! apt-get indextargets --format '$(IDENTIFIER)' | grep -qx Sources; then
    sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources |
        $sudo tee "$sources" >/dev/null
    $sudo apt-get -q update
fi

mkdir -p "$work" "$target/deps/lib" "$target/deps/include"
cd "$work"
[ -d qt6-base ] || {
    apt-get -q source --download-only qt6-base
    dpkg-source -x qt6-base_*.dsc qt6-base
}
# Debian's Qt source does not include its copy of sqlite3.
if [ ! -f "$target/deps/lib/libsqlite3.a" ]; then
    [ -d sqlite3 ] || {
        apt-get -q source --download-only sqlite3
        dpkg-source -x sqlite3_*.dsc sqlite3
    }
    mkdir -p sqlite3-build
    (
        cd sqlite3-build
        ../sqlite3/configure --disable-tcl --disable-readline >/dev/null
        make sqlite3.c >/dev/null
        x86_64-w64-mingw32-gcc-posix -O2 -DSQLITE_THREADSAFE=1 -DSQLITE_ENABLE_FTS5 \
            -DSQLITE_ENABLE_COLUMN_METADATA -DSQLITE_ENABLE_MATH_FUNCTIONS \
            -c sqlite3.c -o sqlite3.o
        x86_64-w64-mingw32-ar rcs "$target/deps/lib/libsqlite3.a" sqlite3.o
        cp sqlite3.h "$target/deps/include"
    )
fi

off=()
for feature in pkg_config dbus opengl vulkan network xml concurrent icu glib zstd cups fontconfig \
    tabletevent direct2d1_1 system_zlib system_png system_jpeg system_freetype system_harfbuzz \
    system_pcre2 system_doubleconversion sql_psql sql_mysql sql_ibase sql_db2 sql_oci \
    textmarkdownwriter textodfwriter; do
    off+=("-DFEATURE_$feature=OFF")
done
on=()
for feature in optimize_size testlib sql sql_odbc sql_sqlite system_sqlite printsupport pdf; do
    on+=("-DFEATURE_$feature=ON")
done
QT_MINGW=$target cmake -G Ninja -S qt6-base -B build \
    "-DCMAKE_TOOLCHAIN_FILE=$here/../../cmake/mingw64.cmake" \
    "-DCMAKE_INSTALL_PREFIX=$target/qt-shared" -DQT_HOST_PATH=/usr \
    "-DQT_HOST_PATH_CMAKE_DIR=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake" \
    -DQT_QMAKE_TARGET_MKSPEC=win32-g++ -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
    -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_BUILD_BENCHMARKS=OFF \
    -DQT_BUILD_MANUAL_TESTS=OFF -DINPUT_opengl=no "${off[@]}" "${on[@]}" \
    "-DSQLite3_INCLUDE_DIR=$target/deps/include" \
    "-DSQLite3_LIBRARY=$target/deps/lib/libsqlite3.a"
[ "${STOP_AFTER:-}" != configure ] || exit 0
cmake --build build
cmake --install build
