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
    printf -v missing_listing '%s  %-34s %s\n' "$missing_listing" "$package" "$why"
  fi
}

has_program() { command -v "$1"; }
has_header() { printf '#include <%s>\n' "$1" | "${CXX:-c++}" -E -x c++ - -o /dev/null; }
has_json_schema() { python3 -c 'import jsonschema' || /usr/bin/python3 -c 'import jsonschema'; }
has_clang_binding() { /usr/bin/python3 -c 'import clang.cindex'; }
has_library() { printf 'int main() {}\n' | "${CXX:-c++}" -x c++ - -l"$1" -o /dev/null; }

has_fuzzer() {
  printf 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }\n' |
    clang++ -x c++ - -fsanitize=fuzzer,address,undefined -o /dev/null
}

# The major one, of the compiler that is there or would be installed.
clang_version() {
  if has_program clang++ >/dev/null; then
    clang++ -dumpversion | cut -d . -f 1
  else
    apt-cache depends clang 2>/dev/null | sed -n 's/.*Depends: clang-\([0-9]*\)$/\1/p'
  fi
}

# As in 1.74, of the headers that are there.
boost_version() {
  printf '#include <boost/version.hpp>\nBOOST_LIB_VERSION\n' | "${CXX:-c++}" -E -P -x c++ - 2>/dev/null |
    tail -n 1 | tr -d '" ' | tr _ .
}

# A library of Boost has to be of the same version as the headers that are there.
boost_package() {
  local version
  version=$(boost_version)
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
      need "$(boost_package program-options)" "the command line of corvane-negotiate" has_library boost_program_options
      need libtbb-dev "the concurrent set of the event log" has_header oneapi/tbb/concurrent_unordered_set.h
      ;;
    test)
      need libgtest-dev "the test framework" has_header gtest/gtest.h
      need libgmock-dev "its matchers" has_header gmock/gmock.h
      need pkg-config "one of the ways to find the package, which is tested" has_program pkg-config
      need binutils "to look at the libraries' symbols" has_program nm
      need gdb "to test the debugger's view" has_program gdb
      need rapidjson-dev "a second opinion on JSON texts" has_header rapidjson/reader.h
      need libfmt-dev "to test that values can be formatted with it" has_header fmt/format.h
      need python3 "runs the validator of JSON schemas" has_program python3
      need python3-jsonschema "that validator" has_json_schema
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
      need python3 "writes the report" has_program python3
      ;;
    peers)
      need libspdlog-dev "a peer: its backtrace" has_header spdlog/spdlog.h
      need liblttng-ust-dev "another peer: tracepoints" has_header lttng/tracepoint.h
      need lttng-tools "its daemon" has_program lttng
      need uuid-dev "a peer: the C library of uuids" has_header uuid/uuid.h
      need nlohmann-json3-dev "a peer: a JSON library" has_header nlohmann/json.hpp
      need rapidjson-dev "a peer: a JSON library" has_header rapidjson/document.h
      need libsimdjson-dev "a peer: a JSON library" has_header simdjson.h
      need libnghttp2-dev "a peer: another protocol's negotiation" has_header nghttp2/nghttp2.h
      need libcapnp-dev "another peer: the beginning of its remote calls" has_header capnp/rpc-twoparty.h
      ;;
    coverage)
      need gcovr "reports the lines and branches that no test runs" has_program gcovr
      ;;
    mutation)
      need python3-clang "finds the places in the sources that can be changed" has_clang_binding
      ;;
    ci)
      need clang "the other compiler" has_program clang++
      need clang-format "the formatting" has_program clang-format
      need clang-tidy "the static checks" has_program clang-tidy
      ;;
    packaging)
      need dpkg-dev "builds Debian packages" has_program dpkg-buildpackage
      need lintian "judges the packages" has_program lintian
      need debootstrap "makes a bare Debian to try them in" has_program debootstrap
      need python3 "writes the list of the exported symbols" has_program python3
      ;;
    licences)
      need reuse "checks that every file has a licence, and lists the contents" has_program reuse
      ;;
    docs)
      need doxygen "makes the site of the comments and the pages" has_program doxygen
      need python3 "prepares the pages for it" has_program python3
      ;;
    model)
      need spin "checks the model of the event log" has_program spin
      need gcc "compiles what it makes of the model" has_program cc
      need python3 "compares the code with the table of the model" has_program python3
      ;;
    abi)
      need g++ "builds what is compared" has_program g++
      need abigail-tools "compares it" has_program abidiff
      ;;
    clang-19)
      need clang-19 "a newer Clang than that of the preset" has_program clang++-19
      ;;
    platforms)
      need debootstrap "makes the trees of other releases" has_program debootstrap
      need valgrind "looks at every access to memory" has_program valgrind
      need googletest "the test framework, to be built with other flags" test -f /usr/src/googletest/CMakeLists.txt
      need dpkg-dev "knows the distribution's hardening flags" has_program dpkg-buildflags
      need qemu-user-static "runs programs of other processors" has_program qemu-s390x-static
      need g++-aarch64-linux-gnu "compiles for ARM64" has_program aarch64-linux-gnu-g++
      need gdb-multiarch "looks into their core files" has_program gdb-multiarch
      need g++-s390x-linux-gnu "compiles for a processor with the other byte order" has_program s390x-linux-gnu-g++
      ;;
    fuzz)
      need clang "the compiler with a fuzzer" has_program clang++
      need "libclang-rt-$(clang_version)-dev" "that fuzzer, and the sanitizers" has_fuzzer
      need rapidjson-dev "a second opinion on JSON texts" has_header rapidjson/reader.h
      ;;
    *)
      echo "packages.sh: no group named '$1'" >&2
      return 2
      ;;
  esac
}

ensure_packages() {
  local group sudo=()
  missing_packages=()
  missing_listing=
  for group in "$@"; do list_group "$group"; done
  [ ${#missing_packages[@]} -gt 0 ] || return 0
  printf 'These packages are missing:\n%s' "$missing_listing"

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
