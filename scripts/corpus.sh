#!/bin/bash
# Packs and unpacks the fuzz targets' collected inputs, fuzz/corpus/TARGET.tar.xz.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

usage() {
    cat <<'USAGE'
Usage: scripts/corpus.sh unpack TARGET FOLDER
       scripts/corpus.sh pack TARGET FOLDER

  unpack  puts the inputs of fuzz/corpus/TARGET.tar.xz into FOLDER (made when missing; what it held
          goes). A target without an archive gives an empty folder.
  pack    makes the archive of the files in FOLDER. The same files give the same archive, byte for
          byte; an archive that already holds just these files is left as it is.
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
        # nothing of the machine or the moment: names in byte order, no owner, time or rights
        (cd "$folder" && find . -maxdepth 1 -type f -printf '%f\0' | LC_ALL=C sort -z |
            tar --format=ustar --owner=0 --group=0 --numeric-owner --mtime=@0 --mode=u=rw,go=r \
                --null --files-from=- -cf -) >"$new"
        # compared unpacked: another version of xz may compress otherwise
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
