# Sourced by ./run, ./test and bench/run: installs what they need on the machine, and builds a preset. Skips what is
# already installed or built.

say() { printf '== %s\n' "$*"; }

die() {
    printf '%s\n' "$*" >&2
    exit 1
}

# Whether the compiler finds a C++ header.
has_header() { printf '#include <%s>\n' "$1" | "${CXX:-c++}" -std=c++20 -E -x c++ - >/dev/null 2>&1; }

# Whether clang can link its fuzzing engine.
has_fuzzing_engine() {
    local program found=0
    program=$(mktemp)
    printf 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }\n' |
        clang++ -x c++ -fsanitize=fuzzer,address,undefined - -o "$program" 2>/dev/null || found=1
    rm -f "$program"
    return $found
}

# Whether the content of the package is installed, from any source. A package that is not named here brings a program
# of its own name.
has_package() {
    case $1 in
        g++) command -v "${CXX:-c++}" >/dev/null ;;
        ninja-build) command -v ninja >/dev/null ;;
        libgtest-dev) has_header gtest/gtest.h ;;
        libgmock-dev) has_header gmock/gmock.h ;;
        libcli11-dev) has_header CLI/CLI.hpp ;;
        libbenchmark-dev) has_header benchmark/benchmark.h ;;
        libsqlite3-dev) has_header sqlite3.h ;;
        liblmdb-dev) has_header lmdb.h ;;
        mdbtools) command -v mdb-export >/dev/null ;;
        postgresql) command -v psql >/dev/null && compgen -G '/usr/lib/postgresql/*/bin/initdb' >/dev/null ;;
        locales) command -v localedef >/dev/null && [ -e /usr/share/i18n/locales/de_DE ] ;;
        nodejs) command -v node >/dev/null ;;
        # The browser without a window; a whole one does as well.
        chromium-headless-shell)
            command -v chromium-headless-shell chromium chromium-browser google-chrome >/dev/null
            ;;
        clang) command -v clang++ >/dev/null ;;
        # The libraries of the sanitizers and the fuzzing engine; some releases package them separately from the
        # compiler.
        libclang-rt-dev) has_fuzzing_engine ;;
        g++-mingw-w64-i686-posix) command -v i686-w64-mingw32-g++-posix >/dev/null ;;
        mingw-w64-tools) command -v i686-w64-mingw32-widl >/dev/null ;;
        googletest) [ -e /usr/src/googletest/googlemock/src/gmock-all.cc ] ;;
        libc6-i386) [ -e /lib/ld-linux.so.2 ] ;;
        *) command -v "$1" >/dev/null ;;
    esac
}

# need_packages PACKAGE...: Debian's names. Installs missing packages, or names them and exits.
need_packages() {
    local package as_root=() missing=()
    for package in "$@"; do
        has_package "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
    if ! command -v apt-get >/dev/null || { [ ${#as_root[@]} -gt 0 ] && ! command -v sudo >/dev/null; }; then
        die "Please install these packages (Debian's names) and start again: ${missing[*]}"
    fi
    say "Installing ${missing[*]}"
    # A partly outdated index may still hold these packages.
    "${as_root[@]}" apt-get update -qq || say "The package index could not be brought up to date"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
        die "Installing failed. Please install these packages and start again: ${missing[*]}"
    for package in "${missing[@]}"; do
        has_package "$package" || die "$package is installed, but what it should bring is not found"
    done
}

# The browser in which tests load the report's page. It is large, and some releases do not package it. Tests that need
# it skip if it cannot be installed.
install_browser() {
    if ! (need_packages chromium-headless-shell); then
        say "The browser could not be installed: the tests that need it will skip"
    fi
}

# build_preset PRESET [-DNAME=VALUE...] [-- TARGET...]: configures and builds; only the named targets, if any.
build_preset() {
    local preset=$1 settings=() targets=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        settings+=("$1")
        shift
    done
    if [ $# -gt 1 ]; then targets=(--target "${@:2}"); fi
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
    fi
    say "Configuring and building preset $preset"
    cmake --preset "$preset" --log-level=WARNING "${settings[@]}" >/dev/null
    cmake --build --preset "$preset" "${targets[@]}"
}

# The tools that build the Windows component; with "wine", also those that run its tests.
need_windows() {
    need_packages g++-mingw-w64-i686-posix mingw-w64-tools googletest
    if [ "${1:-}" = wine ]; then
        need_packages libc6-i386 locales
        scripts/setup_wine build/wine || die "The tests of the Windows component need a Wine that runs 32-bit programs"
    fi
}

# The npm reader that the interop tests compare with, at the version in its package.json. Tests that need it skip when
# it cannot be installed.
install_interop_reader() {
    if ! tests/interop/setup_reader build/interop; then
        [ "${CI:-}" != true ] || die "The second reader could not be installed"
        say "The second reader could not be installed: the tests that need it will skip"
    fi
}
