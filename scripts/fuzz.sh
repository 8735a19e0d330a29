#!/usr/bin/env bash
# Fuzzes one target with libFuzzer for a while, over a scratch copy of its checked-in corpus,
# then merges the inputs that reached new code back into tests/fuzz/corpus/<target>.
# Builds the fuzz preset (clang, AddressSanitizer + UBSan) first, after setting up the machine
# for it. Inputs that crash, leak or hang land in build/fuzz/findings/<target>/; once the fault is
# fixed, copy each into the corpus, where the test fuzz_replay_<target> replays it in every build.
# Usage: scripts/fuzz.sh [manifest|invoke|kcall] [seconds]      (default: invoke 60)
set -euo pipefail
cd "$(dirname "$0")/.."

target=${1:-invoke}
seconds=${2:-60}
# Inputs no longer than a target's decoding needs: a call of the sample module takes a few dozen
# bytes, a manifest or a kcall session a few lines.
case "$target" in
  manifest) max_len=2048 ;;
  invoke) max_len=512 ;;
  kcall) max_len=2048 ;;
  *) echo "usage: scripts/fuzz.sh [manifest|invoke|kcall] [seconds]" >&2; exit 2 ;;
esac

bash scripts/setup.sh fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"

program=build/fuzz/bin/fuzz_$target
corpus=tests/fuzz/corpus/$target
scratch=build/fuzz/scratch/$target
findings=build/fuzz/findings/$target
rm -rf "$scratch"
mkdir -p "$scratch" "$findings"
cp "$corpus"/* "$scratch"/

options=(-rss_limit_mb=4096 -timeout=10 -max_len="$max_len" -artifact_prefix="$findings/")
[ -f "tests/fuzz/$target.dict" ] && options+=(-dict="tests/fuzz/$target.dict")

status=0
"$program" "${options[@]}" -print_final_stats=1 -max_total_time="$seconds" "$scratch" || status=$?

# Only inputs that reach new code join the checked-in corpus, not those that merely run known
# code more often (-use_counters=0): that keeps it to a few hundred inputs, replayed in seconds.
before=$(find "$corpus" -type f | wc -l)
"$program" "${options[@]}" -merge=1 -use_counters=0 "$corpus" "$scratch"
after=$(find "$corpus" -type f | wc -l)
echo "fuzz: $target: corpus $before -> $after inputs (git status $corpus shows the new ones)"
if [ "$status" -ne 0 ]; then
  echo "fuzz: $target found something; the inputs are in $findings/" >&2
fi
exit "$status"
