# Sourced by the other scripts: `need PACKAGE...` installs the Debian packages that are missing and says so.
# As root it installs itself, else through sudo.

need() {
    local package missing=()
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing Debian packages: ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

build_packages=(
    g++ cmake ninja-build pkg-config
    libfftw3-dev zlib1g-dev libpng-dev libfmt-dev
    libsndfile1-dev libcli11-dev nlohmann-json3-dev
    libagg-dev libfreetype-dev libharfbuzz-dev
    libxcb1-dev libxcb-shm0-dev libxcb-xkb-dev libxkbcommon-dev libxkbcommon-x11-dev
    libcurl4-openssl-dev libdbus-1-dev
)
demo_packages=(alsa-utils sox)
test_packages=(libgtest-dev libgmock-dev xvfb libxcb-xtest0-dev xclip dbus-daemon)
fuzz_packages=(clang-14 libclang-rt-14-dev)
bench_packages=(libbenchmark-dev libcairo2-dev)
windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64 googletest dpkg-dev)
