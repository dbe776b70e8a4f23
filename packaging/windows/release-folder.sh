#!/bin/bash
# Collects the Windows programs of a build and the libraries that they need.
# usage: release-folder.sh BUILD-FOLDER QT-FOLDER TARGET
set -euo pipefail
build=$1 qt=$2 target=$3
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")

# The Qt plug-ins in use: platform, style, JPEG for the splash picture.
plugins="platforms/qwindows.dll styles/qwindowsvistastyle.dll imageformats/qjpeg.dll"

tool=x86_64-w64-mingw32
library_folders=("$qt/bin" "/usr/$tool/lib"
    "$(dirname "$($tool-g++-posix -print-file-name=libstdc++-6.dll)")")

# The libraries that a file imports, in lower case, since Windows ignores case.
named_by() {
    "$tool-objdump" -p "$1" | sed -n 's/^\tDLL Name: //p' | tr '[:upper:]' '[:lower:]'
}

# Path of a library by its name, ignoring case; empty if none of our folders has it.
find_library() {
    local folder
    for folder in "${library_folders[@]}"; do
        find "$folder" -maxdepth 1 -iname "$1" -print -quit
    done | head -n 1
}

# Libraries of Windows: API sets, and those for which the compiler has import libraries.
is_systems_own() {
    [[ $1 == api-ms-win-* ]] || [ -e "/usr/$tool/lib/lib${1%.dll}.a" ] || [ -e "/usr/$tool/lib/lib$1.a" ] ||
        [ -e "/usr/$tool/lib/lib${1%.drv}.a" ]
}

rm -rf "$target"
mkdir -p "$target"
waiting=()
for program in taksavaihe.exe zavdb.exe; do
    cp "$build/bin/$program" "$target/"
    waiting+=("$target/$program")
done
for plugin in $plugins; do
    mkdir -p "$target/$(dirname "$plugin")"
    cp "$qt/plugins/$plugin" "$target/$plugin"
    waiting+=("$target/$plugin")
done
while [ ${#waiting[@]} -gt 0 ]; do
    file=${waiting[0]}
    waiting=("${waiting[@]:1}")
    for name in $(named_by "$file"); do
        [ -z "$(find "$target" -maxdepth 1 -iname "$name" -print -quit)" ] || continue
        library=$(find_library "$name")
        if [ -n "$library" ]; then
            cp "$library" "$target/"
            waiting+=("$target/$(basename "$library")")
        elif ! is_systems_own "$name"; then
            echo "$(basename "$file") needs $name, which is neither ours nor part of Windows" >&2
            exit 1
        fi
    done
done
find "$target" -type f \( -name '*.exe' -o -name '*.dll' \) -exec "$tool-strip" --strip-unneeded {} +
sed 's/$/\r/' "$here/LUEMINUT.txt" >"$target/LUEMINUT.txt"
