#!/bin/bash
# Builds the Debian package; installs and runs it in a clean chroot.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/debian.sh [--no-check | --no-build]

Builds the package with cpack into build-debian/. Then makes a clean Debian chroot with debootstrap
(needs root; about 1 GB in a temporary folder, removed at the end), installs the package there with
apt and runs both programs: a demo company, a batch run, the main window under Xvfb.

  --no-check   only builds the package
  --no-build   only checks the package in build-debian/

DEBIAN_MIRROR is the package mirror (default: that of this machine).
USAGE
}

no_build=no no_check=no
parse_options "no-build no-check" "$@"

# shellcheck disable=SC2086,SC2154
install_packages $packages_build $packages_debian
if [ "$no_build" = no ]; then
    cmake -G Ninja -S . -B build-debian -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=OFF \
        -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_ALL_DEPENDENCY=ON
    cmake --build build-debian --target taksavaihe zavdb compressed_files
    rm -f build-debian/*.deb
    (cd build-debian && cpack -G DEB)
fi
package=$(ls build-debian/taksavaihe_*.deb)
ls -l "$package"
lintian --no-tag-display-limit "$package" || true
[ "$no_check" = no ] || exit 0

# --- a clean chroot
root=$(mktemp -d)
chmod 755 "$root"
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
trap 'as_root rm -rf --one-file-system "$root"' EXIT
mirror=${DEBIAN_MIRROR:-$(apt-get indextargets --format "\$(REPO_URI)" 'Identifier: Packages' |
    head -n 1)}
as_root debootstrap --variant=minbase bookworm "$root" "$mirror" >"$root.log" ||
    {
        tail -n 20 "$root.log" >&2
        exit 1
    }
rm -f "$root.log"
# name resolution and proxies are the machine's; packages come from the mirror alone
as_root cp -L /etc/resolv.conf "$root/etc/resolv.conf"
[ ! -d /etc/apt/apt.conf.d ] || as_root find /etc/apt/apt.conf.d -name '*proxy*' \
    -exec cp {} "$root/etc/apt/apt.conf.d/" \;
echo "deb $mirror bookworm main" | as_root tee "$root/etc/apt/sources.list" >/dev/null
as_root cp "$package" "$root/root/taksavaihe.deb"
as_root tee "$root/root/check.sh" >/dev/null <<'CHECK'
set -eu
export DEBIAN_FRONTEND=noninteractive HOME=/home/testi LC_ALL=C.UTF-8
apt-get -q update
apt-get -q -y install --no-install-recommends /root/taksavaihe.deb
apt-get -q -y install --no-install-recommends xvfb xauth xdotool
useradd -m testi
cat >/home/testi/run.sh <<'RUN'
set -eux
cd
zavdb demo Demo "$HOME/yhtiö ä" --products 200
mkdir -p "$HOME/yhtiö ä/MAARITYS" .config/Taksavaihe
printf '[Alv255]\nLahdeAlvLuokkaEdit=1\nKohdeAlvLuokkaEdit=5\nHintaLahde1=hinta\nHinta1Edit=1.0120967741935485\nTuotteet=1\n' \
    >"$HOME/yhtiö ä/MAARITYS/AlvMuutosLomake.INI"
printf '[ASETUKSET]\nmaar1=Alv255\n' >.config/Taksavaihe/ALVMUUTOS.INI
taksavaihe --version
taksavaihe Demo /E
[ "$(zavdb sql Demo "select count(*) from TUOTE where LVV = 1" | tr -d '\r' | tail -n 1)" = 0 ]
[ "$(zavdb sql Demo "select count(*) from ini where sektio = 'TAKSAVAIHE'" | tr -d '\r' | tail -n 1)" = 1 ]
status=0
taksavaihe Demo /E || status=$?
[ "$status" = 3 ]
zavdb check Demo
man_page=/usr/share/man/man1/zavdb.1.gz
[ -s "$man_page" ] && [ -s /usr/share/applications/fi.taksavaihe.Taksavaihe.desktop ]
xvfb-run -a sh -c 'taksavaihe Demo & program=$!
    for i in $(seq 200); do
        if xdotool search --onlyvisible --name "Alvluokkien ja hintojen muutokset"; then
            kill $program; exit 0
        fi
        sleep 0.1
    done
    kill $program; exit 1'
RUN
chown -R testi: /home/testi
su testi -c 'sh /home/testi/run.sh'
apt-get -q -y remove taksavaihe
[ ! -e /usr/bin/taksavaihe ]
CHECK
as_root mount --bind /dev "$root/dev"
as_root mount -t proc proc "$root/proc"
trap 'as_root umount "$root/dev" "$root/proc" || true; as_root rm -rf --one-file-system "$root"' EXIT
as_root chroot "$root" sh /root/check.sh
echo "The package installs, runs and uninstalls in a clean chroot."
