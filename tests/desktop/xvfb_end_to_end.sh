#!/usr/bin/env bash
# The desktop front end end to end: orvel-dialogs -> library -> OrvelGUI.app
# under a private Xvfb server, the window found and answered with xdotool.
# Also: a window whose host is killed closes by itself; a window stays above
# the host's window it was given; no session bus is started; a display that
# goes away ends the window with status 6.
set -u
tool=$1
for program in Xvfb xdotool xprop xmessage; do
  command -v "$program" >/dev/null || { echo "SKIP: $program is not installed"; exit 77; }
done
work=$(mktemp -d)
server=
trap '[ -n "$server" ] && kill "$server" 2>/dev/null; rm -rf "$work"' EXIT

mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
server=$!
read -r -t 20 number <"$work/display" || { echo "FAILED: Xvfb did not start"; cat "$work/xvfb.log"; exit 1; }
export DISPLAY=:$number ORVEL_GUI_FRONTEND=desktop XDG_RUNTIME_DIR=$work
# No session bus: none may be started for our windows either.
unset WAYLAND_DISPLAY QT_QPA_PLATFORM DBUS_SESSION_BUS_ADDRESS

failed=0
# window <title>: the id of the window once it is mapped (20 s at most).
window() { timeout 20 xdotool search --sync --onlyvisible --name "$1" 2>/dev/null | head -n 1; }

# answer <keys> <expected output> <expected status>
answer() {
  "$tool" --lang en yesno --message "Sign the document?" --button yes >"$work/out" 2>"$work/err" &
  local host=$! id status
  id=$(window "^Question")
  [ -n "$id" ] || { echo "FAILED: no yes/no window appeared"; cat "$work/err"; kill "$host"; failed=1; return; }
  # Keys go to the focused window: wait until ours has the focus (there is
  # no window manager to give it) before typing.
  for _ in $(seq 1 50); do
    xdotool windowfocus "$id" 2>/dev/null
    [ "$(xdotool getwindowfocus 2>/dev/null)" = "$id" ] && break
    sleep 0.1
  done
  sleep 0.2
  xdotool key --delay 50 $1
  wait "$host"
  status=$?
  if [ "$(cat "$work/out")" != "$2" ] || [ "$status" -ne "$3" ]; then
    echo "FAILED: keys '$1' gave '$(cat "$work/out")' with status $status, not '$2' with $3"; cat "$work/err"; failed=1
  else
    echo "ok: keys '$1' -> '$2', status $3"
  fi
}
answer "Return" "yes" 0
answer "Tab Return" "no" 0
answer "Escape" "" 2

# The host is killed while its question is open: the window must go too.
"$tool" --lang en yesno --message "Still there?" >/dev/null 2>&1 &
host=$!
id=$(window "^Question")
kill -KILL "$host"
wait "$host" 2>/dev/null
gone=0
for _ in $(seq 1 100); do
  xdotool search --onlyvisible --name "^Question" >/dev/null 2>&1 || { gone=1; break; }
  sleep 0.1
done
if [ -n "$id" ] && [ "$gone" -eq 1 ]; then
  echo "ok: the window closed when its host was killed"
else
  echo "FAILED: the window outlived its killed host"; failed=1
fi

# The host names its window (here an xmessage): ours is its transient, and
# the message box, which gets no -lang, speaks the tool's language.
xmessage -name host "The host" 2>/dev/null &
holder=$!
hostId=$(window "^host$")
"$tool" --lang sk --log --parent-window "x11:$hostId" message --message "Hotovo" >/dev/null 2>"$work/err" &
host=$!
id=$(window "^Informácia")
transient=$([ -n "$id" ] && xprop -id "$id" WM_TRANSIENT_FOR)
[ -n "$id" ] && xdotool windowfocus --sync "$id" key Escape 2>/dev/null
wait "$host"
kill "$holder"
if [ -n "$hostId" ] && [ "$transient" = "WM_TRANSIENT_FOR(WINDOW): window id # $(printf '0x%x' "$hostId")" ]; then
  echo "ok: the Slovak message box stays above the host's window"
else
  echo "FAILED: '${transient:-no Slovak message box}' is not transient for ${hostId:-no host window}"; cat "$work/err"; failed=1
fi

# A dbus-daemon autolaunched for this display would carry it in its environment.
for daemon in $(pgrep -x dbus-daemon); do
  if tr '\0' '\n' <"/proc/$daemon/environ" 2>/dev/null | grep -qx "DISPLAY=:$number"; then
    echo "FAILED: a dbus-daemon ($daemon) was started for the display"; kill "$daemon"; failed=1
  fi
done

# Last, since it ends the display: the X server dies under an open question.
"$tool" --lang en --log yesno --message "Still there?" >/dev/null 2>"$work/err" &
host=$!
id=$(window "^Question")
kill "$server"
wait "$host"
status=$?
server=
if [ -n "$id" ] && [ "$status" -eq 6 ] && grep -q "The display connection was lost" "$work/err"; then
  echo "ok: a lost display ends the question with status 6"
else
  echo "FAILED: after the display was lost the status was $status"; cat "$work/err"; failed=1
fi

[ "$failed" -eq 0 ] && echo "desktop end to end: all passed"
exit "$failed"
