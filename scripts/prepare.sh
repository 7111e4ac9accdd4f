# Sourced by the scripts beside it: installs what is missing on Debian, and says what is needed elsewhere.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

installed() {
    [ "$(dpkg-query -W -f '${Status}' "$1" 2>/dev/null)" = "install ok installed" ]
}

install() {
    local as=()
    if [ "$(id -u)" -ne 0 ]; then as=(sudo); fi
    echo "Installing $*"
    "${as[@]}" apt-get -qq -o DPkg::Lock::Timeout=300 update
    "${as[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -y -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 \
        install --no-install-recommends "$@" >/dev/null
}

can_install() {
    command -v apt-get >/dev/null && command -v dpkg-query >/dev/null &&
        { [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null; }
}

# need PACKAGE[:COMMAND]...: a package counts as there when its command is, wherever that came from.
need() {
    local entry package missing=() commands=()
    for entry in "$@"; do
        package=${entry%%:*}
        if [ "$entry" != "$package" ]; then
            if command -v "${entry#*:}" >/dev/null; then continue; fi
            commands+=("${entry#*:}")
        fi
        if ! installed "$package"; then missing+=("$package"); fi
    done
    if [ ${#missing[@]} -eq 0 ]; then return; fi
    if can_install; then
        install "${missing[@]}"
        return
    fi
    echo "Nothing can be installed here. Needed are, by their names in Debian: ${missing[*]}" >&2
    # Libraries may be there under other names; without a command nothing can be done.
    if [ ${#commands[@]} -ne 0 ]; then exit 1; fi
}

# wish PACKAGE[:COMMAND]...: as need, but does without what can't be had.
wish() {
    local entry package
    for entry in "$@"; do
        package=${entry%%:*}
        if [ "$entry" != "$package" ] && command -v "${entry#*:}" >/dev/null; then continue; fi
        if installed "$package"; then continue; fi
        if ! can_install || ! install "$package"; then echo "Going on without $package"; fi
    done
}

# build PRESET [TARGET]...
build() {
    local preset=$1
    shift
    cmake -S "$root" --preset "$preset" >"$root/build/$preset.log" 2>&1 || { cat "$root/build/$preset.log" >&2; return 1; }
    cmake --build "$root/build/$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}

mkdir -p "$root/build"
need g++:g++ cmake:cmake ninja-build:ninja openssl:openssl libssl-dev libgtest-dev
wish libengine-gost-openssl default-jdk-headless:javac
