# shellcheck shell=bash disable=SC2034
# The Debian packages that the scripts need; sourced by the scripts.

packages_build="g++ cmake ninja-build ccache lld qt6-base-dev libsqlite3-dev unixodbc-dev
    fonts-dejavu-core qt6-translations-l10n"
packages_test="libgtest-dev libgmock-dev git python3 xvfb xz-utils"
# the SQL engines that the tests run against, and their ODBC drivers
packages_servers="virtuoso-opensource-7-bin libvirtodbc0 mariadb-server-core mariadb-client-core
    odbc-mariadb libsqliteodbc"
# the sanitizer build and the fuzzers are clang's; llvm names the source lines of their reports
packages_lint="clang libclang-rt-dev llvm clang-format clang-tidy shellcheck"
packages_windows="g++-mingw-w64-x86-64-posix qt6-base-dev-tools nsis xz-utils"
packages_windows_qt="$packages_windows cmake ninja-build qt6-base-dev dpkg-dev tcl gcc make perl"
packages_windows_smoke="wine wine64 fonts-wine fonts-liberation xvfb openbox imagemagick xdotool
    libsqliteodbc unixodbc"
packages_debian="debootstrap dpkg-dev file lintian desktop-file-utils appstream"
packages_nightly="cppcheck valgrind lld"
packages_soak="eatmydata"
packages_screenshots="xvfb openbox xdotool x11-utils x11-xserver-utils imagemagick poppler-utils
    faketime fonts-dejavu-core"

# Installs those of the given packages that are missing. Needs neither network nor root if all are
# installed.
install_packages() {
    local package sudo="" missing=()
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Missing packages, which need root or sudo to install: ${missing[*]}" >&2
            return 1
        fi
        sudo=sudo
    fi
    echo "Installing packages: ${missing[*]}"
    $sudo apt-get -q update
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 \
        install --no-install-recommends "${missing[@]}"
}
