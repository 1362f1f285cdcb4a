# shellcheck shell=bash
# Building with a profile: the compiler optimises for what a training run did.
# Needs common.sh.

readonly search_suite=tests/data/suite.bench.tsv

# profile_fingerprint COMPILER
# Names everything that a profile depends on.
profile_fingerprint() {
  {
    "$1" --version
    find src -type f -print0 | sort -z | xargs -0 sha256sum
    sha256sum CMakeLists.txt CMakePresets.json cmake/*.cmake script/lib/profile.sh "$search_suite"
  } | sha256sum
}

# run_training ENGINE ...
# Lets the program do what it is measured by.
run_training() {
  "$@" --perft 5
  "$@" --perft 4 "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1"
  local depth fen
  while IFS=$'\t' read -r depth fen _; do
    "$@" --bench "$depth" "$fen" </dev/null
  done <"$search_suite"
}

# build_with_profile PRESET COMPILER PROGRAM [RUNNER]
# Builds PROGRAM of the preset. Before that it trains a build of its own, in
# build/training-PRESET, unless the profile is that of the present sources.
# RUNNER is the command that starts the program where the system itself cannot.
build_with_profile() {
  local preset=$1 compiler=$2 program=$3 runner=("${@:4}")
  local training=build/training-$preset profile=$PWD/build/profile/$preset fingerprint
  fingerprint=$(profile_fingerprint "$compiler")
  if [[ ! -e $profile/fingerprint || $(<"$profile/fingerprint") != "$fingerprint" ]]; then
    rm -rf "$profile"
    configure "$preset" -B "$training" -DBUILD_TESTING=OFF -DZORVANE_PGO=GENERATE -DZORVANE_PGO_DIR="$profile"
    cmake --build "$training" --target zorvane >&2
    echo "running the search suite for the profile of $preset" >&2
    run_training "${runner[@]}" "$training/$program" >/dev/null
    [[ -d $profile ]] || fail "the training of $preset left no profile"
    echo "$fingerprint" >"$profile/fingerprint"
  fi
  configure "$preset" -DZORVANE_PGO=USE -DZORVANE_PGO_DIR="$profile"
  cmake --build --preset "$preset" --target zorvane >&2
}

# build_without_profile PRESET
build_without_profile() {
  configure "$1" -DZORVANE_PGO=OFF
  cmake --build --preset "$1" --target zorvane >&2
}
