#!/bin/sh
# Runs a command on the X server of $DISPLAY with openbox managing its windows, so that windows
# are activated, stacked and focused by a window manager as on a desktop.
openbox --sm-disable >/dev/null 2>&1 &
wm=$!
i=0
until xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; do
    i=$((i + 1))
    [ "$i" -gt 100 ] && { echo "with-openbox: no window manager came up" >&2; kill "$wm"; exit 1; }
    sleep 0.05
done
"$@"
rc=$?
kill "$wm" 2>/dev/null
wait "$wm" 2>/dev/null
exit $rc
