# Sourced by the scripts: where things lie, which packages they need, and how those come onto the machine.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=$root/.cache  # made once and kept; build/ may be wiped at any time

# What each group of packages is for:
#   build     compile and run natively
#   test      the native tests: GoogleTest, a reader of the logs that are written, a client of the network, benchmarks,
#             the format check
#   windows   cross compiler, Wine (fonts apart: windows measure their text)
#   screen    a desktop where there is none, and pictures of it
#   source    unpack a Debian source package
#   measure   count instructions (./bench)
#   package   make a Debian package (./package)
#   fresh     a bare system to try it in (tools/try-package)
#   vm        a virtual machine with the kernel that the tests of CAN interfaces need (tests/buses/socketcan_vm)
#   images    draw the module's bitmaps and icons anew (tools/make-images)
#   tidy      the static analysis that tools/check-style --tidy makes
packages_of() {
  case $1 in
    build) echo g++ cmake ninja-build libxerces-c-dev libasio-dev libcli11-dev nlohmann-json3-dev libfmt-dev libedit-dev ;;
    test) echo googletest can-utils python3-can libbenchmark-dev clang-format-14 ;;
    windows) echo g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine64 fonts-wine googletest ;;
    screen) echo xvfb xauth imagemagick ;;
    source) echo dpkg-dev ;;
    measure) echo valgrind bc ;;
    package) echo dpkg-dev binutils ;;
    fresh) echo debootstrap ;;
    vm) echo qemu-system-x86 cpio iproute2 can-utils ;;
    images) echo librsvg2-bin imagemagick ;;
    tidy) echo clang-tidy-14 ;;
    *) die "no package group '$1'" ;;
  esac
}

say() { printf '== %s\n' "$*" >&2; }

die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# missing_packages NAME...: those of them that are not installed, one per line.
missing_packages() {
  local installed
  installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^installed //p' || true)
  printf '%s\n' "$@" | grep -vxF -e "$installed" || true
}

# need GROUP...: installs what is missing of these groups; asks nothing of apt when all is there.
need() {
  local group wanted missing
  wanted=$(for group in "$@"; do packages_of "$group"; done)
  mapfile -t missing < <(missing_packages $wanted)
  [ "${#missing[@]}" -eq 0 ] && return
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "neither root nor sudo; let root run: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  as_root+=(env DEBIAN_FRONTEND=noninteractive apt-get -qq)
  say "installing ${missing[*]}"
  "${as_root[@]}" update || say "apt-get update failed; going on with the lists that are there"
  "${as_root[@]}" -o Dpkg::Use-Pty=0 install -y --no-install-recommends "${missing[@]}" >/dev/null
}
