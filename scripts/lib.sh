# Shared by the scripts beside it; source it, do not run it.
# shellcheck shell=bash

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

say() { printf '%s\n' "$*"; }
complain() { printf '%s\n' "$*" >&2; }
has() { command -v "$1" > /dev/null 2>&1; }

# Whether the thing that a line of scripts/packages names can be seen here.
is_there() {
  local kind=${1%%:*} what=${1#*:}
  case $kind in
    cmd) has "$what" ;;
    pc) has pkg-config && pkg-config --exists "$what" ;;
    font) has fc-list && [ -n "$(fc-list "$what" 2> /dev/null)" ] ;;
    py) /usr/bin/python3 -c "import $what" 2> /dev/null ;;
    file) [ -e "$what" ] ;;
    header) echo "#include <$what>" | c++ -x c++ -fsyntax-only - 2> /dev/null ;;
    *) return 1 ;;
  esac
}

# Whether Debian's package is installed; never where there is no dpkg.
is_installed() {
  has dpkg-query && dpkg-query -W -f '${Status}' "$1" 2> /dev/null | grep -q ' installed$'
}

# need GROUP...: installs what is missing of these groups. On a system without apt it
# names what is missing and goes on with what is there.
need() {
  local group package probe missing=()
  while read -r group package probe; do
    case " $* " in *" $group "*) ;; *) continue ;; esac
    is_installed "$package" || is_there "$probe" || missing+=("$package")
  done < <(grep -v '^#' scripts/packages)
  [ ${#missing[@]} -eq 0 ] && return 0

  if ! has apt-get; then
    complain "Missing here (Debian's names): ${missing[*]}"
    return 0
  fi
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! has sudo; then
      complain "Missing, and installing needs root: apt-get install ${missing[*]}"
      return 0
    fi
    as_root=(sudo)
  fi
  say "Installing: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update -q &&
    DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -qy \
      --no-install-recommends "${missing[@]}"; } > "$log" 2>&1; then
    tail -n 20 "$log" >&2
    complain "Could not install: ${missing[*]}"
  fi
  rm -f "$log"
}

# build PRESET [TARGET...]: configures and builds quietly; on failure shows what failed.
build() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! { cmake --preset "$preset" &&
    cmake --build --preset "$preset" ${*:+--target "$@"}; } > "$log" 2>&1; then
    tail -n 60 "$log" >&2
    rm -f "$log"
    complain "The build '$preset' failed."
    return 1
  fi
  rm -f "$log"
}
