#!/bin/sh
# Makes the pictures of the analyser's real window: window.sh [BUILD_DIR]. From the project's root; on Debian and its kin it
# installs what is missing. A simulated router serves a call and the PPP login that it carries.
#
#     docs/window-form.png    the form of the plug-in, its list filled by the router
#     docs/window-call.png    the call, from both of its channels, as it was captured
#
# Look at both before they are committed.
set -eu

build=$(cd "${1:-build/release}" && pwd)
cases=tools/docs/dial-in
samples='samples/lan-session.case samples/dsl-pppoe.case'
width=1200 height=760

for program in wireshark:wireshark tshark:tshark Xvfb:xvfb openbox:openbox xdotool:xdotool \
    xwininfo:x11-utils import:imagemagick; do
    command -v "${program%%:*}" >/dev/null ||
        DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${program##*:}"
done

work=$(mktemp -d)
children=''
stop() {
    for child in $children; do
        kill "$child" 2>/dev/null || true
    done
    rm -rf "$work"
}
trap stop EXIT
trap 'exit 130' INT HUP TERM

# What it prints goes to a file that is shown when something fails.
begin() {
    "$@" >>"$work/log" 2>&1 &
    last=$!
    children="$last $children"
}
# Until the command succeeds, for a quarter of a minute, or several where a try takes its time.
until_true() {
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 60 ] || {
            echo "window: gave up waiting for: $*" >&2
            cat "$work/log" >&2
            exit 1
        }
        sleep 0.25
    done
}

# shellcheck disable=SC2086 # the samples are words
begin "$build/ifwatch-sim" --port 0 --port-file "$work/port" --together 2 --fault silence=1000 "$cases"/*.case $samples
until_true test -s "$work/port"
begin Xvfb -displayfd 3 -screen 0 "${width}x${height}x24" 3>"$work/display"
until_true test -s "$work/display"
DISPLAY=:$(cat "$work/display")
HOME=$work XDG_CONFIG_HOME=$work/.config XDG_RUNTIME_DIR=$work/run
TRACE_PWD=admin TRACE_PORT=$(cat "$work/port")
export DISPLAY HOME XDG_CONFIG_HOME XDG_RUNTIME_DIR TRACE_PWD TRACE_PORT
mkdir -m 700 "$work/run"
begin openbox

for plugins in "$work/.config/wireshark/extcap" "$work/.local/lib/wireshark/extcap"; do
    mkdir -p "$plugins"
    ln -s "$build/ifwatch-extcap" "$plugins"
done
others=$(tshark -D 2>/dev/null | sed 's/^[0-9]*\. //; s/ (.*//' | grep -v '^ifwatch$' | paste -s -d , -)
cat >"$work/.config/wireshark/preferences" <<PREFERENCES
gui.column.format: "No.", "%m", "Time", "%t", "Interface", "%Cus:frame.interface_name:0:R", "Protocol", "%p", "Info", "%i", "Comment", "%Cus:frame.comment:0:R"
gui.geometry.save.position: FALSE
gui.update.enabled: FALSE
gui.ask_unsaved: FALSE
capture.auto_scroll: FALSE
capture.devices_hide: $others
extcap.ifwatch.host: 127.0.0.1
PREFERENCES
cat >"$work/.config/wireshark/recent" <<RECENT
column.width: %m, 44, %t, 70, %Cus:frame.interface_name, 170, %p, 90, %i, 560, %Cus:frame.comment, 130
RECENT

# Opens the window in its place, with these arguments, once its title is there.
open_window() {
    title=$1
    shift
    begin wireshark "$@"
    analyser=$last
    until_true xdotool search --onlyvisible --name "$title"
    window=$(xdotool search --onlyvisible --name "$title" | head -n 1)
    sleep 2 # openbox has its own idea of where it goes
    xdotool windowsize --sync "$window" $((width - 10)) $((height - 30))
    xdotool windowmove "$window" 1 1
    sleep 2 # it draws
    main=$window
}
# A place in the window that was found last.
click() { xdotool mousemove --window "$window" "$1" "$2" click 1 && sleep 2; }
# What the screen shows where the main window is, without the frame around it.
picture() {
    part=$(xwininfo -id "$main" | awk '
        /Absolute upper-left/ { at = at "+" $NF }
        /Width:/ { width = $NF }
        /Height:/ { height = $NF }
        END { print width "x" height at }
    ')
    import -window root -crop "$part" +repage -strip +dither -colors 64 "PNG8:$1"
    echo "$1: made anew"
}

open_window 'Wireshark Network Analyzer'
# The gear beside the only interface, which takes its time to be there.
open_form() { click 160 238 && xdotool search --onlyvisible --name 'Interface Options'; }
until_true open_form
window=$(xdotool search --onlyvisible --name 'Interface Options' | head -n 1)
click 492 124 # "Ask the router"
sleep 3
click 286 124 # the list
picture docs/window-form.png
kill "$analyser"

open_window 'Capturing from' -k -i ifwatch -o extcap.ifwatch.interface:line:2100
sleep 5
click 400 300 # a packet
picture docs/window-call.png
