# Sourced by the scripts beside it: installs what is missing on Debian and says what is needed elsewhere, configures,
# builds, and runs tests with few lines of output.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
mkdir -p "$root/build"

heading() {
    printf '\n== %s\n' "$*"
}

# usage TEXT STATUS: prints how the script is called and ends it.
usage() {
    if [ "$2" -eq 0 ]; then printf 'usage: %s\n' "$1"; else printf 'usage: %s\n' "$1" >&2; fi
    exit "$2"
}

# steadily LOG COMMAND...: runs a command with its output in LOG and a dot every few seconds; if it fails, prints the log.
steadily() {
    local log=$1 ticker status=0
    shift
    # It ends with the script, however that ends; a sleep in the background must not keep a reader of the script waiting.
    (while sleep 5 </dev/null >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do printf .; done) &
    ticker=$!
    "$@" >"$log" 2>&1 </dev/null || status=$?
    kill "$ticker" 2>/dev/null || true
    wait "$ticker" 2>/dev/null || true
    printf '\n'
    if [ "$status" -ne 0 ]; then cat "$log" >&2; fi
    return "$status"
}

# progress WHAT: of Ninja's and CTest's lines shows how many are done, on a terminal in one line, else every ten seconds;
# all other lines, which are those of failures, as they are.
progress() {
    local what=$1 line='' part status at=0 of=0 shown=$SECONDS every=10 start='' end='\n'
    if [ -t 1 ]; then every=1 start='\r' end=''; fi
    while true; do
        status=0
        IFS= read -r -t "$every" part || status=$?
        line+=$part
        if [ "$status" -eq 0 ] || { [ "$status" -le 128 ] && [ -n "$line" ]; }; then
            if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\  || $line =~ ^\ *([0-9]+)/([0-9]+)\ Test\ .*(\ Passed|\*Skipped)\  ]]; then
                at=${BASH_REMATCH[1]} of=${BASH_REMATCH[2]}
                if [ "$at" -eq "$of" ]; then printf "$start  %s %d of %d\n" "$what" "$at" "$of"; fi
            elif [[ ! $line =~ ^\ *Start\ +[0-9]+:\  && $line != "ninja: no work to do." ]]; then
                printf "$start%s\n" "$line"
            fi
            line=
        fi
        if [ "$status" -ne 0 ] && [ "$status" -le 128 ]; then break; fi
        if [ "$at" -lt "$of" ] && [ $((SECONDS - shown)) -ge "$every" ]; then
            printf "$start  %s %d of %d$end" "$what" "$at" "$of"
            shown=$SECONDS
        fi
    done
    if [ "$at" -eq 0 ]; then printf '  nothing to do\n'; fi
}

installed() {
    [ "$(dpkg-query -W -f '${Status}' "$1" 2>/dev/null)" = "install ok installed" ]
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

packages() {
    as_root env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get -y -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 "$@"
}

install() {
    local log=$root/build/install.log size
    printf 'Installing %s\n' "$*"
    size=$(packages --assume-no --no-install-recommends install "$@" 2>/dev/null |
        sed -n 's/^Need to get \(.*\) of archives.*/\1 to fetch/p; s/^After this operation, \(.*\) of additional.*/, \1 on the disk/p' |
        tr -d '\n' || true)
    printf '  with what they need: %s; this takes one to five minutes ' "${size:-a few MB}"
    steadily "$log" packages --no-install-recommends install "$@"
}

can_install() {
    command -v apt-get >/dev/null && command -v dpkg-query >/dev/null &&
        { [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null; }
}

# need [?]PACKAGE[:COMMAND]...: a package counts as there when its command is, wherever that came from. Those with "?"
# are done without where they can't be had.
need() {
    local entry package missing=() commands=() wished=() known=()
    for entry in "$@"; do
        package=${entry#\?}
        package=${package%%:*}
        if [[ $entry == *:* ]] && command -v "${entry##*:}" >/dev/null; then continue; fi
        if installed "$package"; then continue; fi
        if [[ $entry == \?* ]]; then
            wished+=("$package")
            continue
        fi
        if [[ $entry == *:* ]]; then commands+=("${entry##*:}"); fi
        missing+=("$package")
    done
    if [ $((${#missing[@]} + ${#wished[@]})) -eq 0 ]; then return; fi
    if can_install; then
        printf 'Reading the lists of packages '
        steadily "$root/build/install.log" packages update || true
        for package in "${wished[@]}"; do
            if apt-cache show "$package" >/dev/null 2>&1; then known+=("$package"); fi
        done
        if [ $((${#missing[@]} + ${#known[@]})) -ne 0 ] && ! install "${missing[@]}" "${known[@]}"; then
            if [ ${#known[@]} -eq 0 ]; then return 1; fi
            if [ ${#missing[@]} -ne 0 ]; then install "${missing[@]}"; fi
        fi
    elif [ ${#missing[@]} -ne 0 ]; then
        echo "Nothing can be installed here. Needed are, by their names in Debian: ${missing[*]}" >&2
        # Libraries may be there under other names; without a command nothing can be done.
        if [ ${#commands[@]} -ne 0 ]; then exit 1; fi
    fi
    for package in "${wished[@]}"; do
        if ! installed "$package"; then echo "Going on without $package"; fi
    done
}

# What the library and the example programs are built with, and what the tests take besides.
compiling=(g++:g++ cmake:cmake ninja-build:ninja openssl:openssl libssl-dev '?libengine-gost-openssl')
testing=("${compiling[@]}" python3:python3 libgtest-dev '?default-jdk-headless:javac' '?pkg-config:pkg-config')

# build PRESET [TARGET]...
build() {
    local preset=$1
    shift
    printf 'Configuring build/%s ' "$preset"
    steadily "$root/build/$preset.log" cmake -S "$root" --preset "$preset"
    echo "Building"
    cmake --build "$root/build/$preset" --parallel "$(nproc)" ${1:+--target "$@"} | progress built
}

# run_tests PRESET: all tests of a preset; those that were skipped are counted, with their reason.
run_tests() {
    local preset=$1 log=$root/build/$1/Testing/Temporary/LastTest.log
    (cd "$root" && ctest --preset "$preset" --parallel "$(nproc)") | progress tested
    awk '/ Skipped$/ { getline; ++count[$0] }
        sub(/^Skipped: /, "") { ++count[$0] }
        END { for (reason in count) printf "%d skipped: %s\n", count[reason], reason }' "$log"
}
