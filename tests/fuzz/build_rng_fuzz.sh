#!/bin/sh
# Builds the saved-image fuzzer with clang (libFuzzer, AddressSanitizer, UndefinedBehaviorSanitizer)
# from the random-stream sources and the memory service, writes its seed corpus, and, given a
# duration in seconds as the first argument, runs it:
#   tests/fuzz/build_rng_fuzz.sh [seconds] [build dir]
set -eu
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
OUT=${2:-$ROOT/build-fuzz}
mkdir -p "$OUT/corpus"
FLAGS="-std=c++20 -O1 -g -mavx2 -mfma -mbmi -mbmi2 -mlzcnt -mpopcnt -mpclmul -maes -ffp-contract=off
       -fsanitize=address,undefined -fno-sanitize-recover=undefined -I$ROOT/include -I$ROOT/src"
SOURCES="$ROOT/src/rng/*.cpp $ROOT/services/memory.cpp"
clang++ $FLAGS -fsanitize=fuzzer $ROOT/tests/fuzz/rng_load_fuzz.cpp $SOURCES -o "$OUT/rng_load_fuzz"
clang++ $FLAGS $ROOT/tests/fuzz/make_rng_corpus.cpp $SOURCES -o "$OUT/make_rng_corpus"
"$OUT/make_rng_corpus" "$OUT/corpus"
if [ "${1:-0}" -gt 0 ]; then
  "$OUT/rng_load_fuzz" -max_total_time="$1" -max_len=8192 -rss_limit_mb=2048 "$OUT/corpus"
fi
