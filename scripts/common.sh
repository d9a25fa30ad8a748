# shellcheck shell=bash
# What the scripts share. Sourced from the project's root.

# quietly TEXT LOG COMMAND...: says TEXT, keeps the command's output in LOG, and shows its end only when it fails.
quietly() {
  local text=$1 log=$2
  shift 2
  echo "$text"
  mkdir -p "$(dirname "$log")"
  if ! "$@" >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "$text: failed; the whole output is in $log" >&2
    return 1
  fi
}

# build PRESET [TARGET...]: configures and builds into build/PRESET.
build() {
  local preset=$1
  shift
  quietly "Configuring $preset" "build/$preset-configure.log" cmake --preset "$preset"
  quietly "Building $preset" "build/$preset-build.log" cmake --build --preset "$preset" ${1:+--target "$@"}
}

# prepare_page: builds release with what opens pages of runs in Chromium.
prepare_page() {
  scripts/install-prerequisites page
  quietly "Turning the tests of the page on" build/release-page.log cmake --preset release -D VELORA_PAGE_TESTS=ON
  build release
}

# in_browser SCRIPT ARGUMENT...: runs a script of tests/page.
in_browser() {
  NODE_MODULES=$PWD/build/release/tests/page/node_modules VELORA_BIN=$PWD/build/release/bin SOURCE=$PWD \
    node "tests/page/$1" "${@:2}"
}
