# SPDX-License-Identifier: MIT
#
# What the scripts that use the item in a panel share: waiting, looking at the screen and
# working the item's menu. Sourced with x and y set to a place on the item; runs in the
# session that `panel` makes (E2E_THEN). Packages: xdotool, imagemagick.

# until_true SECONDS COMMAND...: waits for a condition.
until_true() {
  local end=$((SECONDS + $1))
  shift
  while ! "$@" 2>/dev/null; do
    [ $SECONDS -le $end ] || return 1
    sleep 0.05
  done
}
# below: what the screen shows below the panel, as a number.
below() {
  import -window root -crop 1000x200+0+38 rgb:- | cksum
}
shows_below() {
  [ "$(below)" = "$1" ]
}
shows_another_below() {
  local now
  now=$(below)
  [ "$now" != "$1" ] && shows_below "$now" # and it is drawn to its end
}
# dismiss: closes whatever is open, by a click beside it, until the screen is as it was at
# first. What does not close in time is handled by the next click.
dismiss() {
  until_true 3 shows_below "$empty" && return
  xdotool key Escape mousemove $((x - 60)) $((y + 120)) click 1 mousemove "$x" "$y"
  until_true 3 shows_below "$empty"
}
# choose N: the Nth entry of the item's menu; fails where that does not follow. waybar's menus
# take no keys; its entries are 24 pixels high and begin left of and below the pointer.
choose() {
  local before
  dismiss
  xdotool mousemove "$x" "$y" click 3
  until_true 5 shows_another_below "$empty" || return
  [ -z "${menu:-}" ] || { import -window root "$menu" && menu=; }
  if [ -n "${WAYLAND_DISPLAY:-}" ]; then
    before=$(below)
    xdotool mousemove $((x - 70)) $((y - 9 + 24 * $1))
    until_true 3 shows_another_below "$before" && xdotool click 1
    return
  fi
  for ((entry = 0; entry < $1; ++entry)); do
    before=$(below)
    xdotool key Down
    until_true 3 shows_another_below "$before" || return
  done
  xdotool key Return
}
# until_it SECONDS CONDITION COMMAND...: does what a person does whose click went astray,
# because a menu was drawn late: clicks again. CONDITION is one command line.
until_it() {
  local seconds=$1 condition=$2
  shift 2
  for attempt in 1 2 3 4; do
    "$@" && until_true "$seconds" eval "$condition" && return
    dismiss
  done
  echo "${0##*/}: it never came to this: $condition; the program printed" >&2
  cat "$PROGRAM_LOG" >&2
  exit 1
}
# is_logged TEXT COUNT: the program has printed the line so often.
is_logged() {
  [ "$(grep -c "$1" "$PROGRAM_LOG")" -ge "$2" ]
}

xdotool mousemove $((x - 60)) $((y + 120))
empty=$(below)
