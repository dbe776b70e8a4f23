#!/bin/bash
# Cross-builds the Windows programs and packages them: release folder, zip, installer.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/windows.sh [--no-packages] [--smoke] [--if-qt-is-there]

Builds taksavaihe.exe and zavdb.exe with mingw-w64 (folder build-windows/) and creates in
build-windows/release: a folder with the programs and the libraries they need, a zip of it and an
installer.

  --no-packages     makes the release folder only
  --smoke           then runs the programs under wine and compares them with the Linux programs in
                    build/bin (see tests/windows/smoke.sh)
  --if-qt-is-there  does nothing but print a note if neither Qt for Windows nor its archive exists

Qt for Windows is expected in /opt/qt-mingw. If it is missing, it is unpacked from the archive named
by QT_MINGW_ARCHIVE (default ../shared/windows/qt-mingw.tar.xz, with its SHA-256 sum in a file of the
same name plus .sha256); without an archive packaging/windows/build-qt.sh builds it.
USAGE
}

no_packages=no smoke=no if_qt_is_there=no
parse_options "no-packages smoke if-qt-is-there" "$@"

export QT_MINGW=/opt/qt-mingw
archive=${QT_MINGW_ARCHIVE:-../shared/windows/qt-mingw.tar.xz}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

prepare_qt() {
    [ ! -x "$QT_MINGW/qt-shared/bin/qt-cmake" ] || return 0
    if [ -f "$archive" ]; then
        local wanted found
        wanted=$(cut -d' ' -f1 "$archive.sha256")
        found=$(sha256sum "$archive" | cut -d' ' -f1)
        if [ "$wanted" != "$found" ]; then
            echo "$archive: checksum $found, expected $wanted ($archive.sha256)" >&2
            return 1
        fi
        as_root tar -C "$(dirname "$QT_MINGW")" -xJf "$archive"
    else
        echo "No archive $archive: building Qt for Windows."
        as_root packaging/windows/build-qt.sh "$QT_MINGW"
    fi
}

if [ "$if_qt_is_there" = yes ] && [ ! -d "$QT_MINGW/qt-shared" ] && [ ! -f "$archive" ]; then
    echo "SKIPPED: the Windows build, since neither $QT_MINGW nor $archive exists."
    exit 0
fi

# shellcheck disable=SC2086,SC2154
install_packages $packages_build $packages_windows
prepare_qt

# The dictionary compiler runs on the build machine.
cmake -G Ninja -S . -B build-win-host -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=OFF >/dev/null
cmake --build build-win-host --target dictc
cmake --preset windows >/dev/null
targets=(taksavaihe zavdb)
[ "$smoke" = no ] || targets+=(hold_record fake_client)
cmake --build --preset windows --target "${targets[@]}"

version=$(sed -n 's/^project(taksavaihe VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
release=$PWD/build-windows/release
folder=$release/Taksavaihe
packaging/windows/release-folder.sh build-windows "$QT_MINGW/qt-shared" "$folder"
echo "Release folder: $(du -sh "$folder" | cut -f1) in $(find "$folder" -type f | wc -l) files"

# Installer instructions that delete exactly the files and folders of the release folder.
uninstall_list() {
    # shellcheck disable=SC2016,SC1003  # the installer's variables, and its separator
    (cd "$folder" && find . -mindepth 1 -depth \( -type d -printf 'RMDir "$INSTDIR/%P"\n' \) \
        -o -type f -printf 'Delete "$INSTDIR/%P"\n') | tr '/' '\\'
}

if [ "$no_packages" = no ]; then
    name=taksavaihe-$version-windows-x64
    rm -f "$release/$name".*
    (cd "$release" && cmake -E tar cf "$name.zip" --format=zip Taksavaihe)
    uninstall_list >"$release/uninstall-list.nsh"
    makensis -V2 -INPUTCHARSET UTF8 "-DVERSION=$version" "-DFOLDER=$folder" \
        "-DLIST=$release/uninstall-list.nsh" "-DICON=$PWD/packaging/icons/taksavaihe.ico" \
        "-DOUTFILE=$release/$name.exe" packaging/windows/installer.nsi
    ls -l "$release/$name".*
fi
if [ "$smoke" = yes ]; then
    # shellcheck disable=SC2086,SC2154
    install_packages $packages_windows_smoke
    cp build-windows/bin/{hold_record.exe,fake_client.dll} "$release/"
    tests/windows/smoke.sh "$release" build/bin
fi
