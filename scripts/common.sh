# shellcheck shell=bash
# Functions that the scripts share. Source it from the root of the project.

# quietly TEXT LOG COMMAND...: prints TEXT and how long the command took, and writes its output to LOG. If the command
# fails, it shows the end of the output.
quietly() {
  local text=$1 log=$2 start=$SECONDS
  shift 2
  printf '%s' "$text"
  mkdir -p "$(dirname "$log")"
  if ! "$@" >"$log" 2>&1; then
    echo
    tail -n 40 "$log" >&2
    echo "$text: failed; the whole output is in $log" >&2
    return 1
  fi
  echo ": $((SECONDS - start)) s"
}

# build PRESET [TARGET...]: configures and builds into build/PRESET. VELORA_PAGE in the environment becomes the option
# of that name (docs/report.md).
build() {
  local preset=$1
  shift
  quietly "Configuring $preset" "build/$preset-configure.log" \
    cmake --preset "$preset" ${VELORA_PAGE:+-D "VELORA_PAGE=$VELORA_PAGE"}
  quietly "Building $preset" "build/$preset-build.log" cmake --build --preset "$preset" ${1:+--target "$@"}
}

# in_memory: gives tests a folder in memory for what they write, if there is room for it: they make thousands of stores,
# and would wait for the disk most of the time. It is removed when the script ends.
in_memory() {
  local room
  room=$(df --output=avail --block-size=1G /dev/shm 2>/dev/null | tail -1) || return 0
  [[ -w /dev/shm && $room -ge 4 ]] || return 0
  TMPDIR=$(mktemp --directory -p /dev/shm)
  chmod 1777 "$TMPDIR"  # servers run as a user of their own
  export TMPDIR
  trap 'rm -rf "$TMPDIR"' EXIT
}

# without_page PRESET: says why the preset was configured without the page of a run; nothing, if it has it.
without_page() { sed -n 's/^-- page: no, because //p' "build/$1-configure.log"; }

# prepare_benchmarks TARGET...: builds benchmarks with release, where the libraries are that tests run.
prepare_benchmarks() {
  scripts/install-prerequisites benchmarks
  quietly "Turning the benchmarks on" build/release-benchmarks.log cmake --preset release -D VELORA_BENCHMARKS=ON
  build release "$@"
}

# prepare_page: builds release with the tests that open pages of runs in Chromium.
prepare_page() {
  scripts/install-prerequisites browser
  quietly "Turning the tests of the page on" build/release-page.log \
    cmake --preset release -D VELORA_PAGE=ON -D VELORA_PAGE_TESTS=ON
  build release
}

# in_browser SCRIPT ARGUMENT...: runs a script of tests/page.
in_browser() {
  NODE_MODULES=$PWD/build/release/tests/page/node_modules VELORA_BIN=$PWD/build/release/bin SOURCE=$PWD \
    node "tests/page/$1" "${@:2}"
}

# project_version: the version, which stands only in CMakeLists.txt.
project_version() { sed -n 's/^project(.* VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt; }
