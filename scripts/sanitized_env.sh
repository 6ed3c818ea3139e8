# Sourced by test_sanitized.sh and fuzz.sh: configures build-san/ (clang, sanitizers, libFuzzer targets)
# and sets the sanitizers' options for the programs run from it. There the suite runs each libFuzzer
# target for 30 seconds: twelve targets on two cores add about three minutes to CI.
CC=clang CXX=clang++ cmake -S . -B build-san -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELKOR_FUZZ=ON \
    -DVELKOR_FUZZ_SECONDS=30 -DVELKOR_BUILD_BENCHMARKS=OFF >/dev/null
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:allocator_may_return_null=1:strict_string_checks=1:intercept_strndup=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
# The X keyboard library reads past the end of its own buffers in strndup, which is not ours to fix.
# Leaks the toolkit's own libraries keep until exit are theirs, not ours.
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$PWD/scripts/lsan.supp:print_suppressions=0}
