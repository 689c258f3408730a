# Shared by the scripts in this folder: where the tree is, what they need, how they build.
set -euo pipefail
export LC_ALL=C
cd "$(dirname "${BASH_SOURCE[0]}")/.."

jobs=$(nproc)

# The packages of a full development machine, by Debian's names.
build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libgmock-dev python3-cram clang libclang-rt-14-dev)
check_packages=(clang-format clang-tidy)

# Installs those of the named packages that are missing.
need() {
    local missing=()
    local package
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "missing packages, and no sudo to install them: ${missing[*]}" >&2; exit 1; }
        as_root=(sudo)
    fi
    echo "installing: ${missing[*]}"
    "${as_root[@]}" apt-get -qq update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -y install --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures and builds one preset, or only the named targets of it.
build() {
    local preset=$1
    shift
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"} | grep -vE '^(\[|ninja: no work)' || [ "${PIPESTATUS[0]}" -eq 0 ]
}
