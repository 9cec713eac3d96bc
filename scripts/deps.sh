# Installs the Debian packages the build needs, when any is missing.
# Sourced by the other scripts.
# What building and running toolbase takes; the tests, benchmarks, fuzzers
# and packaging take the second list as well.
BUILD_PACKAGES=(cmake g++ make pkg-config nlohmann-json3-dev rapidjson-dev libboost-regex-dev
                libmnl-dev libnftables-dev linux-libc-dev
                ccache)
TEST_PACKAGES=(libgtest-dev libgmock-dev libbenchmark-dev dpkg-dev clang libclang-rt-14-dev lintian man-db
               iproute2 nftables)

# ensure_deps [build]: every package, or with "build" the first list only.
ensure_deps() {
  local wanted=("${BUILD_PACKAGES[@]}")
  [ "${1:-}" = build ] || wanted+=("${TEST_PACKAGES[@]}")
  local missing=()
  for package in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing missing packages: ${missing[*]}" >&2
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
}

# Configures and builds into the folder $1 with the CMake options that follow;
# only the targets in $BUILD_TARGETS when set, else everything.
build_into() {
  local dir=$1
  shift
  cmake -S . -B "$dir" "$@" >/dev/null
  local targets=()
  for target in ${BUILD_TARGETS:-}; do targets+=(--target "$target"); done
  cmake --build "$dir" -j"$(nproc)" "${targets[@]}"
}
