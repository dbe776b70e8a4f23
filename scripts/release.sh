#!/bin/bash
# Builds all files of a release from a tag.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh

usage() {
    cat <<'USAGE'
Usage: scripts/release.sh TAG [TARGET]

Builds the tagged commit (not the working tree) into the folder TARGET (default build-release/TAG):
source archive, Debian package, Windows zip and installer, SHA256SUMS over them, and NOTES.md with
the version's section of CHANGELOG.md. The tag is "v" followed by the version in CMakeLists.txt.

The programs show the time of the tagged commit as their build time.
QT_MINGW_ARCHIVE is the archive of Qt for Windows, see scripts/windows.sh.
USAGE
}

parse_options ARGUMENTS "$@"
[ ${#arguments[@]} -ge 1 ] || wrong_usage "No tag given."
tag=${arguments[0]}
if ! commit=$(git rev-parse --verify --quiet "refs/tags/$tag^{commit}"); then
    echo "There is no tag $tag." >&2
    exit 1
fi
target=$(realpath -m "${arguments[1]:-build-release/$tag}")
version=${tag#v}
archive=${QT_MINGW_ARCHIVE:-../shared/windows/qt-mingw.tar.xz}
QT_MINGW_ARCHIVE=$(realpath -m "$archive")
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct "$commit")
export QT_MINGW_ARCHIVE SOURCE_DATE_EPOCH

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source=$work/taksavaihe-$version
git archive --format=tar --prefix="taksavaihe-$version/" "$commit" | tar -C "$work" -x

stated=$(sed -n 's/^project(taksavaihe VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
if [ "$stated" != "$version" ]; then
    echo "Tag $tag: CMakeLists.txt states version $stated." >&2
    exit 1
fi
# the version's section of the changelog, without its heading
notes=$(awk -v heading="## $version" '$0 == heading || index($0, heading " ") == 1 { on = 1; next }
    /^## / { on = 0 } on' "$source/CHANGELOG.md")
if [ -z "${notes//[[:space:]]/}" ]; then
    echo "CHANGELOG.md of $tag has no section \"## $version\"." >&2
    exit 1
fi

mkdir -p "$target"
rm -f "$target"/*
printf '%s\n' "$notes" | sed '/./,$!d' >"$target/NOTES.md"
git archive --format=tar --prefix="taksavaihe-$version/" "$commit" |
    gzip -9n >"$target/taksavaihe-$version.tar.gz"
(cd "$source" && scripts/debian.sh --no-check && scripts/windows.sh)
cp "$source"/build-debian/taksavaihe_*.deb "$target/"
cp "$source/build-windows/release/taksavaihe-$version-windows-x64".{zip,exe} "$target/"
(cd "$target" && sha256sum taksavaihe* >SHA256SUMS && cat SHA256SUMS && ls -l)
