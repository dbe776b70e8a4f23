#!/bin/bash
# Packs and unpacks the inputs of the fuzz targets, fuzz/corpus/TARGET.tar.xz.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

usage() {
    cat <<'USAGE'
Usage: scripts/corpus.sh unpack TARGET FOLDER
       scripts/corpus.sh pack TARGET FOLDER

  unpack  replaces FOLDER by the inputs in fuzz/corpus/TARGET.tar.xz. A target without an archive
          gives an empty folder.
  pack    archives the files in FOLDER. The same files give the same archive, byte for byte; an
          archive that already holds exactly these files is left unchanged.
USAGE
}

if [ $# -ne 3 ]; then
    usage >&2
    exit 2
fi
archive=fuzz/corpus/$2.tar.xz folder=$3

case "$1" in
    unpack)
        rm -rf "$folder"
        mkdir -p "$folder"
        [ ! -f "$archive" ] || tar -C "$folder" -xJf "$archive"
        ;;
    pack)
        new=$(mktemp)
        trap 'rm -f "$new"' EXIT
        # reproducible: names in byte order, fixed owner, time and permissions
        (cd "$folder" && find . -maxdepth 1 -type f -printf '%f\0' | LC_ALL=C sort -z |
            tar --format=ustar --owner=0 --group=0 --numeric-owner --mtime=@0 --mode=u=rw,go=r \
                --null --files-from=- -cf -) >"$new"
        # compared uncompressed: xz versions differ in their output
        if [ -f "$archive" ] && xz -dc "$archive" | cmp -s - "$new"; then
            exit 0
        fi
        mkdir -p fuzz/corpus
        xz -9e -T1 -c "$new" >"$archive"
        echo "$archive: $(find "$folder" -maxdepth 1 -type f | wc -l) inputs"
        ;;
    *)
        usage >&2
        exit 2
        ;;
esac
