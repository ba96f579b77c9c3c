# Functions that the scripts share. Sourced, never run; every script sets `set -euo pipefail` before.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

jobs=${VERTANA_JOBS:-$(nproc)}
sourceFolders=(host plugin spine geometry display state workstation phantom cli tests bench)

# What a program of ours is built from, and what only the tests need. The optional ones speed things up or serve as
# independent judges: without them the build goes on and the tests that need them say that they skip.
packagesToBuild=(build-essential cmake ninja-build pkg-config libdcmtk-dev libopenjp2-7-dev nlohmann-json3-dev libcli11-dev
                 libsqlitecpp-dev libutf8proc-dev zlib1g-dev)
packagesToBuildOptional=(ccache qt6-base-dev fonts-dejavu-core)
packagesToTest=("${packagesToBuild[@]}" libgtest-dev libgmock-dev libbenchmark-dev)
packagesToTestOptional=("${packagesToBuildOptional[@]}" dcmtk dicom3tools libgdcm-tools python3-pydicom python3-pil
                        python3-nibabel python3-jsonschema gobjc libgnustep-base-dev gnustep-make libplist-utils
                        groff-base man-db mandoc xvfb xdotool)
packagesToTestPlugin=(build-essential cmake ninja-build libgtest-dev libgmock-dev)
packagesToLint=("${packagesToTest[@]}" clang-14 clang-tidy-14)

say() { printf '%s\n' "$*"; }
complain() { printf '%s\n' "$*" >&2; }

# asRoot COMMAND...: as root when we are not; never waits for a password that nobody can type.
asRoot() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif ! command -v sudo >/dev/null; then
    complain "This needs root, and there is no sudo: $*"
    return 1
  elif [ -t 0 ]; then
    sudo "$@"
  else
    sudo -n "$@"
  fi
}

# missingPackages NAME...: prints those that are not installed, one a line.
missingPackages() {
  local name
  for name in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || printf '%s\n' "$name"
  done
}

aptInstall() {
  asRoot env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends -qq -o Dpkg::Use-Pty=0 "$@" \
    </dev/null >>"$aptLog" 2>&1
}

# installPackages REQUIRED... -- OPTIONAL...: installs what is missing. Says in one line what could not be installed;
# fails when something required is among it. VERTANA_SKIP_PACKAGES=1 leaves everything to whoever runs the script.
installPackages() {
  local -a required=() optional=() missing=() lacking=()
  while [ $# -gt 0 ] && [ "$1" != -- ]; do required+=("$1"); shift; done
  [ $# -eq 0 ] || shift
  optional=("$@")

  [ "${VERTANA_SKIP_PACKAGES:-0}" != 1 ] || return 0
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    complain "Not a Debian system: nothing is installed. The build needs the equivalents of: ${required[*]}."
    return 0
  fi

  mapfile -t missing < <(missingPackages "${required[@]}" "${optional[@]}")
  [ ${#missing[@]} -gt 0 ] || return 0
  say "Installing ${missing[*]} ..."
  aptLog=$(mktemp)
  if ! asRoot apt-get update -qq </dev/null >>"$aptLog" 2>&1; then
    complain "The package lists could not be brought up to date; trying with the old ones."
  fi
  # All at once is fastest. One package that cannot be had must not keep back the others: then one by one.
  if ! aptInstall "${missing[@]}"; then
    local name
    for name in "${missing[@]}"; do aptInstall "$name" || true; done
  fi

  mapfile -t lacking < <(missingPackages "${optional[@]}")
  [ ${#lacking[@]} -eq 0 ] || complain "Could not install ${lacking[*]}; going on without (log: $aptLog)."
  mapfile -t lacking < <(missingPackages "${required[@]}")
  if [ ${#lacking[@]} -gt 0 ]; then
    complain "Could not install ${lacking[*]}, which the build needs (log: $aptLog). Install them and run this again."
    return 1
  fi
}

# configurePreset PRESET [-DNAME=VALUE...]. Quiet when it works.
configurePreset() {
  local preset=$1 log
  shift
  command -v ccache >/dev/null || set -- -DCMAKE_CXX_COMPILER_LAUNCHER= "$@"
  log=$(mktemp)
  if ! cmake --preset "$preset" "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

# buildPreset PRESET [TARGET...]
buildPreset() {
  local preset=$1
  shift
  cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"}
}

# folderOfPreset PRESET: where CMakePresets.json puts its build.
folderOfPreset() {
  case "$1" in
    release) echo build ;;
    asan+ubsan) echo build/asan ;;
    *) echo "build/$1" ;;
  esac
}

# testFolder BUILD_FOLDER [CTEST ARGUMENT...]: fails when a test fails and when there is none.
testFolder() {
  local folder=$1
  shift
  ctest --test-dir "$folder" -j "$jobs" --output-on-failure --no-tests=error "$@" </dev/null
}

# checkPluginReadsOnlyItsOwn BUILD_FOLDER: the presets of the plug-in alone hide the workstation's packages from CMake;
# this complains of headers of the workstation or of its libraries, which may well be installed on this machine,
# that such a build has read.
checkPluginReadsOnlyItsOwn() {
  local foreign
  foreign=$(ninja -C "$1" -t deps |
            grep -iE '/(dcmtk|plist[^/]*|openjpeg[^/]*|nlohmann|CLI|sqlite[^/]*|SQLiteCpp|qt[0-9]*|utf8proc)[/.]|/workstation/' |
            sort -u || true)
  if [ -n "$foreign" ]; then
    complain "$foreign"
    complain "  ^ The plug-in and its tests must build without these."
    return 1
  fi
  say "The plug-in and its tests read no header of the workstation or of its libraries."
}

# step HEADING COMMAND...: runs a program (not a function: it must end at its own first failure) between a heading and
# a line with its duration, and remembers both. Goes on after a failure; printSummary tells.
stepSummary=()
failedSteps=0
step() {
  local heading=$1 started=$SECONDS result=ok
  shift
  printf '\n=== %s\n' "$heading"
  "$@" </dev/null || { result=FAILED; failedSteps=$((failedSteps + 1)); }
  stepSummary+=("$(printf '%6d s  %-6s  %s' $((SECONDS - started)) "$result" "$heading")")
  printf '=== %s: %s after %d s\n' "$heading" "$result" $((SECONDS - started))
}

# printSummary: the steps once more, with their durations; fails when one failed.
printSummary() {
  printf '\n'
  printf '%s\n' "${stepSummary[@]}"
  printf '%6d s  in all\n' "$SECONDS"
  [ "$failedSteps" = 0 ]
}
