# Sourced: a Wine prefix of the project's own below build/, or the folder NELTCTRL_PREFIX, without a display.
# Gives: wine_start (makes the prefix once and keeps one server), wine_stop, register_dll; $steady is for before wine.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="${NELTCTRL_PREFIX:-$root/build/wine}" WINEARCH=win64 WINEDEBUG=-all DISPLAY= WINEDLLOVERRIDES='mscoree,mshtml='
export LC_ALL=C.UTF-8  # so that Windows programs get any character as an argument
# Kernels since 6.9 may put a program's heap where Wine needs its page of shared data: one start in a few thousand then
# ends at once ("failed to map the shared user data"). Where the system lets us, addresses are not drawn by lot.
steady="setarch -R"
$steady true 2>/dev/null || steady=
dll="$root/build/windows/NeltCtrlx64.dll"

wine_start() {
  mkdir -p "$WINEPREFIX"
  exec 9>"$WINEPREFIX/.lock"
  flock 9
  if ! wineserver -k0 >/dev/null 2>&1; then
    # A server of its own session: a signal to a server that a program started would make it print all it holds.
    setsid wineserver -p </dev/null >/dev/null 2>&1 9>&- || true
    $steady wine wineboot -i </dev/null >/dev/null 2>&1 9>&- || true
    # Wine's services come with the first program and go with the last; those that a test brought up would hold on
    # to its output. So one program stays, waiting for input that never comes.
    rm -f "$WINEPREFIX/.idle"
    mkfifo "$WINEPREFIX/.idle"
    $steady setsid sh -c 'exec wine cmd /k <>"$WINEPREFIX/.idle" >/dev/null 2>&1' 9>&- &
  fi
  exec 9>&-
}

wine_stop() { wineserver -k >/dev/null 2>&1 || true; }

# Says why when the module does not load or register.
register_dll() {
  local path said code=0
  path=$($steady wine winepath -w "$dll" 2>/dev/null | tr -d '\r')
  said=$(WINEDEBUG=-all,err+module $steady wine regsvr32 "$path" 2>&1) || code=$?
  [ "$code" = 0 ] || grep -E '^regsvr32:|err:module' <<<"$said" >&2 || echo "regsvr32 ended with $code" >&2
  return "$code"
}
