# Installs the Debian packages the build needs, when any is missing.
# Sourced by the other scripts.
REQUIRED_PACKAGES=(cmake g++ make pkg-config libgtest-dev libgmock-dev libbenchmark-dev
                   nlohmann-json3-dev rapidjson-dev libboost-regex-dev ccache dpkg-dev
                   clang libclang-rt-14-dev)

ensure_deps() {
  local missing=()
  for package in "${REQUIRED_PACKAGES[@]}"; do
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
