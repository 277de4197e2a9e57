# Sourced: a Wine prefix of the project's own below build/, without a display.
# Gives: wine_start (makes the prefix once and keeps one server), wine_stop, register_dll.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$root/build/wine" WINEARCH=win64 WINEDEBUG=-all DISPLAY= WINEDLLOVERRIDES='mscoree,mshtml='
dll="$root/build/windows/NeltCtrlx64.dll"

wine_start() {
  mkdir -p "$WINEPREFIX"
  exec 9>"$WINEPREFIX/.lock"
  flock 9
  # A server of its own session: a signal to a server that a program started would make it print all it holds.
  setsid wineserver -p >/dev/null 2>&1 9>&- || true
  if [ ! -e "$WINEPREFIX/.ready" ]; then
    wine wineboot -i >/dev/null 2>&1 9>&-
    touch "$WINEPREFIX/.ready"
  fi
  exec 9>&-
}

wine_stop() { wineserver -k >/dev/null 2>&1 || true; }

register_dll() { wine regsvr32 /s "$(wine winepath -w "$dll" 2>/dev/null | tr -d '\r')" >/dev/null 2>&1; }
