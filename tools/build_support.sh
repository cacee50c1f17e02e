# Shared by ./run, ./run-tests and .ci/run, which source it: installing what a build needs, and quiet builds.
# Nothing here writes to standard output, which belongs to the script or the tests that are run.

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)

# Runs a command with its output kept back; shows it on standard error only if the command fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if [ "$status" -ne 0 ]; then
    cat "$log" >&2
    echo "failed with status $status: $*" >&2
  fi
  rm -f "$log"
  return "$status"
}

# Tells a user at a terminal what takes a while; a log or a pipe gets nothing.
announce() { [ ! -t 2 ] || echo "$* ..." >&2; }

# installPackages PACKAGE...: Debian packages, as root or through sudo.
installPackages() {
  [ $# -gt 0 ] || return 0
  local -a asRoot=(env DEBIAN_FRONTEND=noninteractive)
  if ! command -v apt-get >/dev/null; then
    echo "please install (names of Debian packages): $*" >&2
    return 1
  fi
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "not root and no sudo; please install: $*" >&2
      return 1
    fi
    asRoot=(sudo "${asRoot[@]}")
  fi
  announce "installing (Debian packages): $*"
  quietly "${asRoot[@]}" apt-get -q update &&
    quietly "${asRoot[@]}" apt-get -q install -y --no-install-recommends "$@"
}

hasCommand() { command -v "$1" >/dev/null 2>&1; }

# The packages of the named needs that this machine lacks.
missingPackages() {
  local need
  for need in "$@"; do
    case $need in
      compiler) hasCommand "${CXX:-c++}" || hasCommand g++ || echo g++ ;;
      cmake) hasCommand cmake || echo cmake ;;
      make) hasCommand ninja || hasCommand make || echo ninja-build ;;
      ninja) hasCommand ninja || echo ninja-build ;;
      python) hasCommand python3 || echo python3 ;;
      gtest) [ -e /usr/include/gtest/gtest.h ] || [ -e /usr/local/include/gtest/gtest.h ] || echo libgtest-dev ;;
      gcc) hasCommand g++ || echo g++ ;;
      clang) hasCommand clang++ || echo clang ;;
      clang-runtime) [ -n "$(find /usr/lib/llvm-14/lib/clang -name 'libclang_rt.asan*' 2>/dev/null)" ] || echo libclang-rt-14-dev ;;
      clang-format) hasCommand clang-format || echo clang-format ;;
      clang-tidy) hasCommand run-clang-tidy || echo clang-tidy ;;
      packages) { hasCommand dpkg-shlibdeps || echo dpkg-dev; } && { hasCommand file || echo file; } ;;
      pkg-config) hasCommand pkg-config || echo pkg-config ;;
    esac
  done
}

# ensure NEED...: installs what is missing; see missingPackages for the needs.
ensure() {
  local -a packages
  mapfile -t packages < <(missingPackages "$@")
  installPackages "${packages[@]}"
}

# configure FOLDER OPTION...: configures a build folder; the generator is settled by the first time.
configure() {
  local folder=$1
  shift
  if [ ! -e "$folder/CMakeCache.txt" ] && hasCommand ninja; then
    set -- -G Ninja "$@"
  fi
  quietly cmake -S "$root" -B "$folder" "$@"
}

# build FOLDER [TARGET...]
build() {
  local folder=$1
  shift
  quietly cmake --build "$folder" --parallel "$(nproc)" ${1:+--target "$@"}
}
