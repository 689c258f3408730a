# Shared by the scripts in this folder: where the tree is, what they need, how they build.
set -euo pipefail
export LC_ALL=C
script=$(realpath "$0")
cd "$(dirname "${BASH_SOURCE[0]}")/.."

jobs=$(nproc)

# Prints the comment at the head of the script, when the arguments ask for help.
helped() {
    [[ " $* " == *" --help "* || " $* " == *" -h "* ]] || return 1
    sed -n '2,/^[^#]/ s/^# \{0,1\}//p' "$script"
}

refuse() { echo "scripts/${script##*/}: $1; see --help" >&2; exit 2; }

# For a script that takes no arguments.
no_arguments() {
    if helped "$@"; then exit; fi
    [ $# -eq 0 ] || refuse "unknown argument $1"
}

# For a script that hands its arguments on: known_options HELP ARGUMENT... refuses an option that is not in the help, and
# a word that belongs to no option.
known_options() {
    local help=$1 word before=
    shift
    for word in "$@"; do
        if [[ $word == -* ]]; then
            grep -qE -e "(^|[^-[:alnum:]])${word%%=*}([^-[:alnum:]]|$)" <<< "$help" || [[ $word == -j[0-9]* ]] || refuse "unknown option $word"
        elif [[ $before != -* ]]; then
            refuse "unknown argument $word"
        fi
        before=$word
    done
}

# Says what a script is at, beside its results.
stage() { echo "$*" >&2; }

# The packages of a full development machine, by Debian's names.
build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libgmock-dev python3-cram python3-serial picocom ppp python3-pytest clang libclang-rt-14-dev zsh chromium tshark)
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
    stage "installing: ${missing[*]}"
    "${as_root[@]}" apt-get -qq update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -y install --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures and builds one preset, or only the named targets of it. A terminal shows how far it is.
build() {
    local preset=$1
    shift
    cmake --preset "$preset" >/dev/null
    stage "building: $preset"
    if [ -t 1 ]; then
        cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"}
    else
        cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"} | grep -vE '^(\[|ninja: no work)' || [ "${PIPESTATUS[0]}" -eq 0 ]
    fi
}
