# Sets up what the project needs on this machine; sourced by the scripts rovescio, test and package.
#
# Everything said here goes to standard error: the program may be part of a pipe.

# Says one line to the user.
say() {
    printf '%s\n' "$*" >&2
}

# Waits until no other of the scripts builds. Several may be started at once; the later ones find all done.
lock_build() {
    mkdir -p "$source_dir/build" && exec 9> "$source_dir/build/.lock" || exit 5
    flock 9
    log=$source_dir/build/setup.log
}

unlock_build() {
    exec 9>&-
}

# Packages of the given purposes (see packages.txt) that are not installed.
missing_packages() {
    local purpose package wanted=()
    while read -r purpose package; do
        [[ " $* " == *" $purpose "* ]] && wanted+=("$package")
    done < "$source_dir/packages.txt"
    for package in "${wanted[@]}"; do
        [[ $(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null) == ii* ]] || printf '%s ' "$package"
    done
}

# Copies a build's output to the log and tells on the terminal, in one line that is rewritten, how far it is.
log_steps() {
    local line shown=
    while IFS= read -r line; do
        printf '%s\n' "$line"
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]]; then
            shown="Building: step ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}"
            printf '\r%s\033[K' "$shown" >&2
        fi
    done >> "$log"
    [[ -z $shown ]] || printf '\r\033[K' >&2
}

# Runs a command with its output in the log; shows the log's end when the command fails.
run_logged() {
    local status
    if [[ -t 2 ]]; then
        "$@" 2>&1 < /dev/null | log_steps
        status=${PIPESTATUS[0]}
    else
        "$@" >> "$log" 2>&1 < /dev/null
        status=$?
    fi
    if [[ $status -ne 0 ]]; then
        say "This failed: $*"
        tail -n 40 "$log" >&2
        say "The whole log: $log"
        return 1
    fi
}

# Installs missing packages, or ends with the command that would.
install_packages() {
    local missing as_root=()
    if ! command -v dpkg-query > /dev/null; then
        say "This is no Debian system; the libraries of packages.txt are taken to be installed."
        return 0
    fi
    read -ra missing <<< "$(missing_packages "$@")"
    [[ ${#missing[@]} -eq 0 ]] && return 0
    if [[ $EUID -ne 0 ]]; then
        if ! sudo -n true 2> /dev/null; then
            say "Some packages are missing. Install them with this command, then run me again:"
            say "  sudo apt-get update && sudo apt-get install -y ${missing[*]}"
            exit 5
        fi
        as_root=(sudo -n)
    fi
    say "Installing packages: ${missing[*]}"
    run_logged "${as_root[@]}" apt-get update || exit 5
    run_logged "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y \
        --no-install-recommends "${missing[@]}" || exit 5
}

# Builds targets of a preset; all of them when none is named.
build_preset() {
    local preset=$1
    shift
    NINJA_STATUS='[%f/%t] ' run_logged cmake --build "$source_dir/build/$preset" ${1:+--target "$@"}
}

# Builds what the program needs to run, or to be packed.
build_program() {
    # The tests need more packages than the program; a build tree that has them keeps them.
    if [[ ! -f $source_dir/build/release/build.ninja ]]; then
        local options=(-DROVESCIO_TESTS=OFF -DROVESCIO_BENCHMARKS=OFF)
        [[ -f $source_dir/build/release/CMakeCache.txt ]] && options=()
        (cd "$source_dir" && run_logged cmake --preset release "${options[@]}") || return 1
    fi
    build_preset release product
}

# Prints a path when a source changed since the stamp file. The time of the last status change is
# compared, which every way of changing, replacing or removing a file moves forward.
changed_since() {
    cd "$source_dir" && find packages.txt CMakeLists.txt CMakePresets.json cmake platform plugin host \
        -cnewer "$1" -print -quit
}
