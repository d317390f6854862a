# SPDX-License-Identifier: Apache-2.0
# Sourced by the other scripts: ensure_packages GROUP... installs what a group of tasks needs and the machine lacks.
#
# What is there is found as the build finds it, by asking the compiler and the linker, and is left alone wherever it
# came from. What is missing comes from the distribution's packages.

missing_packages=()

# need PACKAGE WHY TEST...: PACKAGE is missing if TEST fails.
need() {
  local package=$1 why=$2
  shift 2
  if [[ " ${missing_packages[*]:-} " != *" $package "* ]] && ! "$@" >/dev/null 2>&1; then
    missing_packages+=("$package")
    printf '  %-34s %s\n' "$package" "$why"
  fi
}

has_program() { command -v "$1"; }
has_header() { printf '#include <%s>\n' "$1" | "${CXX:-c++}" -E -x c++ - -o /dev/null; }
has_library() { printf 'int main() {}\n' | "${CXX:-c++}" -x c++ - -l"$1" -o /dev/null; }

# A library of Boost has to be of the same version as the headers that are there.
boost_package() {
  local version
  version=$(printf '#include <boost/version.hpp>\nBOOST_LIB_VERSION\n' | "${CXX:-c++}" -E -P -x c++ - 2>/dev/null |
    tail -n 1 | tr -d '" ' | tr _ .)
  case $version in
    1.*) echo "libboost-$1$version-dev" ;;
    *) echo "libboost-$1-dev" ;;
  esac
}

list_group() {
  case $1 in
    build)
      need g++ "a C++20 compiler" has_program "${CXX:-c++}"
      need cmake "the build system" has_program cmake
      need ninja-build "what CMake drives" has_program ninja
      need libboost-dev "uuid, random, operators" has_header boost/uuid/uuid.hpp
      need "$(boost_package log)" "the core under the diagnostic logger" has_library boost_log
      need libtbb-dev "the concurrent set of the event log" has_header oneapi/tbb/concurrent_unordered_set.h
      ;;
    test)
      need libgtest-dev "the test framework" has_header gtest/gtest.h
      need libgmock-dev "its matchers" has_header gmock/gmock.h
      need pkg-config "one of the ways to find the package, which is tested" has_program pkg-config
      need binutils "to look at the libraries' symbols" has_program nm
      need gdb "to test the debugger's view" has_program gdb
      ;;
    demo)
      need "$(boost_package program-options)" "the demo's command line" has_library boost_program_options
      need liblz4-dev "one compression that the demo negotiates" has_header lz4.h
      need libzstd-dev "the other one" has_header zstd.h
      need libssl-dev "the checksum of the file that is sent" has_header openssl/evp.h
      need pkg-config "finds these" has_program pkg-config
      ;;
    bench)
      need libbenchmark-dev "the measuring" has_header benchmark/benchmark.h
      need libspdlog-dev "a peer: its backtrace" has_header spdlog/spdlog.h
      need liblttng-ust-dev "another peer: tracepoints" has_header lttng/tracepoint.h
      need lttng-tools "its daemon" has_program lttng
      ;;
    ci)
      need clang "the other compiler" has_program clang++
      need clang-format "the formatting" has_program clang-format
      need clang-tidy "the static checks" has_program clang-tidy
      ;;
    *)
      echo "packages.sh: no group named '$1'" >&2
      return 2
      ;;
  esac
}

ensure_packages() {
  local group listing sudo=()
  missing_packages=()
  listing=$(mktemp)
  for group in "$@"; do list_group "$group" >>"$listing"; done
  if [ ${#missing_packages[@]} -gt 0 ]; then
    echo "These packages are missing:"
    cat "$listing"
  fi
  rm -f "$listing"
  [ ${#missing_packages[@]} -gt 0 ] || return 0

  if ! command -v apt-get >/dev/null; then
    echo "There is no apt-get here to install them with: install their like by hand, then start again." >&2
    return 1
  fi
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "Installing them takes root, and there is no sudo: have them installed, then start again." >&2
      return 1
    fi
    sudo=(sudo)
  fi
  echo "Installing them with: ${sudo[*]:+${sudo[*]} }apt-get install"
  "${sudo[@]}" apt-get update -qq
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing_packages[@]}" >/dev/null
}
