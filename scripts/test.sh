#!/usr/bin/env bash
# Installs what is needed, builds bsn and runs the whole test suite: once in
# an optimised build, once under AddressSanitizer and UndefinedBehaviorSanitizer;
# then the tests that run on threads under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
jobs=$(nproc 2>/dev/null || echo 2)

scripts/build.sh build
(cd build && ctest --output-on-failure -j "$jobs")

# The installed package: the embedding example, built against it with
# nothing but find_package(bsn) and again through pkg-config, must agree with
# the command-line host. Then the same for a shared library, which must also
# export nothing outside the library's namespaces (built unoptimised: only
# its link, its exports and the example's numbers are checked).
scripts/checkinstall.sh build
scripts/build.sh build-shared -DBUILD_SHARED_LIBS=ON -DBSN_BUILD_TESTS=OFF -DBSN_BUILD_HOST=OFF \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0
scripts/checkexports.sh build-shared/libbsn.so
scripts/checkinstall.sh build-shared build/bsn

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
scripts/build.sh build-asan -DBSN_SANITIZE=ON -DBSN_BENCH=OFF
(cd build-asan && ctest --output-on-failure -j "$jobs")

# ThreadSanitizer: only the test binary, and only the tests that use threads.
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBSN_TSAN=ON -DBSN_BENCH=OFF \
  > build-tsan.configure.log 2>&1 || { cat build-tsan.configure.log; exit 1; }
ninja -C build-tsan bsn_tests
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
  build-tsan/bsn_tests --gtest_filter='ThreadPool.*:CorrelationThreads.*:CorrelationHost.*'
