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
    font) has fc-list && [ -n "$(fc-list "${what//_/ }" 2> /dev/null)" ] ;;
    py) /usr/bin/python3 -c "import $what" 2> /dev/null ;;
    gir) /usr/bin/python3 -c "import gi; gi.require_version(*'$what'.rsplit('-', 1))" 2> /dev/null ;;
    lib) [ -n "$(compgen -G "/usr/lib*/$what" || compgen -G "/usr/lib*/*/$what")" ] ;;
    clang) [ -n "$(compgen -G "$(clang++ -print-resource-dir 2> /dev/null)/lib/*/$what*")" ] ;;
    file) [ -e "$what" ] ;;
    *) return 1 ;;
  esac
}

# Whether Debian's package is installed; never where there is no dpkg.
is_installed() {
  has dpkg-query && dpkg-query -W -f '${Status}' "$1" 2> /dev/null | grep -q ' installed$'
}

# The column of scripts/packages with this system's names, after the group and the probe.
package_column() {
  if has apt-get; then echo 1
  elif has dnf; then echo 2
  elif has pacman; then echo 3
  elif has zypper; then echo 4
  else echo 1; fi
}

# The command that installs packages here; nothing on a system that this does not know.
install_command() {
  case $(package_column) in
    2) echo "dnf install" ;;
    3) echo "pacman -S --needed" ;;
    4) echo "zypper install" ;;
    *) has apt-get && echo "apt-get install" ;;
  esac
}

# missing_packages GROUP...: the packages of these groups that are not here, a line each.
missing_packages() {
  local group probe column
  local -a names
  column=$(package_column)
  while read -r group probe names[0] names[1] names[2] names[3]; do
    case " $* " in *" $group "*) ;; *) continue ;; esac
    local name=${names[$((column - 1))]}
    [ "$name" != - ] || continue
    is_installed "${names[0]}" || is_there "$probe" || echo "$name"
  done < <(grep -v '^#' scripts/packages) | sort -u
}

# moving_line TEXT: how far something is. On a terminal it takes the place of the one before;
# elsewhere it is printed every 30 s. Without a text the line on the terminal is cleared.
moving_line() {
  if [ -t 1 ]; then
    printf '\r\033[K%s' "$*"
  elif [ $# -gt 0 ] && [ $((SECONDS - line_shown)) -ge 30 ]; then
    say "  $*"
    line_shown=$SECONDS
  fi
}

# Copies apt-get's output to the file LOG and shows its status lines, which the option
# APT::Status-Fd asks for.
show_installing() {
  local log=$1 line started=$SECONDS line_shown=$SECONDS
  while IFS= read -r line; do
    if [[ $line =~ ^(dlstatus|pmstatus):[^:]*:([0-9]+) ]]; then
      case ${BASH_REMATCH[1]} in
        dlstatus) line="fetching" ;;
        *) line="installing" ;;
      esac
      moving_line "Packages: $line, ${BASH_REMATCH[2]} %, $((SECONDS - started)) s"
    else
      printf '%s\n' "$line" >> "$log"
    fi
  done
  moving_line
}

# apt_get LOG COMMAND...: runs apt-get, and waits for another package manager that is busy. Its
# messages are in English whatever the user's language, since they are searched here, and the
# environment is set behind sudo, which takes it away.
apt_get() {
  local started=$SECONDS said="" line_shown=$SECONDS log=$1
  shift
  until : > "$log"; "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C \
    apt-get -o APT::Status-Fd=1 "$@" 2>&1 | show_installing "$log"; do
    if ! grep -q 'Could not get lock' "$log" || [ $((SECONDS - started)) -ge 600 ]; then
      return 1
    fi
    [ -n "$said" ] || say "Another package manager is at work here; waiting for it."
    said=1
    moving_line "Waiting, $((SECONDS - started)) s"
    sleep 5
  done
}

# Of these packages those that apt-get cannot install by themselves, or all where it could.
not_installable() {
  local name found=()
  for name in "$@"; do
    apt-get -s -q install --no-install-recommends "$name" > /dev/null 2>&1 || found+=("$name")
  done
  [ ${#found[@]} -gt 0 ] || found=("$@")
  echo "${found[*]}"
}

# need GROUP...: installs what is missing of these groups. Where it cannot, because the system
# has no apt or this user may not, it names what is missing; without something that the build
# needs the script ends there.
need() {
  local missing as_root=() log status=0 started=$SECONDS
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ] && has sudo; then
    as_root=(sudo)
  fi
  if ! has apt-get || { [ "$(id -u)" -ne 0 ] && [ ${#as_root[@]} -eq 0 ]; }; then
    complain "Missing here: ${missing[*]}"
    complain "Install them as root: $(install_command) ${missing[*]}"
    case " $* " in *" build "*) ;; *) return 0 ;; esac
    [ -z "$(missing_packages build)" ]
    return
  fi
  say "Installing ${#missing[@]} packages and what they need: ${missing[*]}"
  log=$(mktemp)
  apt_get "$log" -q update &&
    apt_get "$log" -qy --no-install-recommends install "${missing[@]}" || status=1
  if [ $status -ne 0 ]; then
    tail -n 20 "$log" >&2
    mapfile -t missing < <(missing_packages "$@")
    complain "Could not install: $(not_installable "${missing[@]}")"
  else
    say "Installed in $((SECONDS - started)) s."
  fi
  rm -f "$log"
  return $status
}

# Copies ninja's output to the file LOG and shows how far it is. The first twentieth, with the
# headers that are compiled once, says nothing of the rest.
show_progress() {
  local title=$1 log=$2 line started=$SECONDS line_shown=$SECONDS elapsed left
  while IFS= read -r line; do
    printf '%s\n' "$line" >> "$log"
    [[ $line =~ ^\[([1-9][0-9]*)/([0-9]+)\] ]] || continue
    elapsed=$((SECONDS - started))
    left=""
    if [ $((BASH_REMATCH[1] * 20)) -ge "${BASH_REMATCH[2]}" ]; then
      left=", about $((elapsed * (BASH_REMATCH[2] - BASH_REMATCH[1]) / BASH_REMATCH[1])) s left"
    fi
    moving_line "$title: ${BASH_REMATCH[0]} $elapsed s$left"
  done
  moving_line
}

# build PRESET [TARGET...]: configures and builds; on failure shows what failed. With CI=true a
# test that cannot run here fails the configuration.
build() {
  local preset=$1 log require=OFF started=$SECONDS line_shown=$SECONDS
  shift
  log=$(mktemp)
  [ "${CI:-}" != true ] || require=ON
  moving_line "Building '$preset': configuring"
  if ! { cmake --preset "$preset" -DVANTORA_REQUIRE_TESTS=$require > "$log" 2>&1 &&
    NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" ${*:+--target "$@"} 2>&1 |
    show_progress "Building '$preset'" "$log"; }; then
    grep -v '^\[[0-9]*/[0-9]*\] ' "$log" | tail -n 60 >&2
    rm -f "$log"
    complain "The build '$preset' failed."
    return 1
  fi
  rm -f "$log"
  [ $((SECONDS - started)) -lt 5 ] || say "Built '$preset' in $((SECONDS - started)) s."
}

project_version() { sed -n 's/^project(Vantora VERSION \([^ ]*\).*/\1/p' CMakeLists.txt; }

# When the newest version in the changelog was made, in seconds since 1970: the age of
# everything in packages, so that the same source gives the same bytes.
project_epoch() { date -d "$(sed -n 's/^ -- .*>  //p' debian/changelog | head -n 1)" +%s; }

# copy_source FOLDER: this tree without what was built; age and modes do not depend on when and by
# whom it was checked out.
copy_source() {
  mkdir -p "$1"
  tar -c --mtime="@$(project_epoch)" --mode=u+rw,go=rX --exclude=./build --exclude=./.git --exclude=./.cache \
    --exclude=__pycache__ . | tar -xp -C "$1"
}

# make_tarball FILE: the source as one file vantora-VERSION.tar.gz, whose bytes depend on
# nothing but the source.
make_tarball() {
  local folder name
  name=vantora-$(project_version)
  folder=$(mktemp -d)
  copy_source "$folder/$name"
  tar -C "$folder" --sort=name --owner=0 --group=0 --numeric-owner -c "$name" | gzip -9n > "$1"
  rm -rf "$folder"
}

# What the changelog says of the newest version, a line with "- " for each change.
newest_changes() {
  awk '/^ -- /{exit} /^  \* /{if (text) print text; text = "- " substr($0, 5); next}
    /^    /{sub(/^ +/, " "); text = text $0} END {print text}' debian/changelog
}

# fill_in TEMPLATE TARBALL: the recipe with the version and the checksum of this source.
fill_in() {
  sed "s/@VERSION@/$(project_version)/; s/@SHA256@/$(sha256sum "$2" | cut -d ' ' -f 1)/" "$1"
}
