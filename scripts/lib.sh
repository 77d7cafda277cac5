# shellcheck shell=bash
# Shared by the scripts: paths, and the packages that a bare Debian machine needs.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# shellcheck disable=SC2034  # used by the scripts that read this file
build_packages=(cmake g++ ninja-build pkg-config libcli11-dev libfmt-dev nlohmann-json3-dev libncurses-dev)
# shellcheck disable=SC2034
test_packages=(libgtest-dev libgmock-dev util-linux binutils locales)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# install_packages NAME...: installs what is missing, as root or through sudo.
install_packages() {
  local package missing=()
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
    echo "please install: ${missing[*]}" >&2
    return 1
  fi
  echo "installing: ${missing[*]}" >&2
  as_root apt-get update -qq >&2 || true  # the installation fails if a list is missing
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build_preset PRESET [target...]: configures and builds build/PRESET; builds only what has changed.
build_preset() {
  local preset=$1 log
  shift
  log=$(mktemp)
  (cd "$top" && cmake --preset "$preset") >"$log" 2>&1 || { cat "$log" >&2; rm -f "$log"; return 1; }
  rm -f "$log"
  cmake --build "$top/build/$preset" ${1:+--target "$@"}
}

# privately COMMAND...: runs it with a private /dev/shm, if the system allows that.
privately() {
  local private=()
  if unshare -m true 2>/dev/null; then private=(unshare -m); elif unshare -rm true 2>/dev/null; then private=(unshare -rm); fi
  [ ${#private[@]} -eq 0 ] || set -- "${private[@]}" sh -c 'mount -t tmpfs tmpfs /dev/shm && exec "$@"' sh "$@"
  "$@"
}
