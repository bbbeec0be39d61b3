# Sourced behind lib.sh by scripts that want windows with pixels: Wine on a virtual desktop, in a prefix of its own, since that
# of the tests has windows without pixels. No window manager runs, so the frames are Wine's own.
export OSTREL_WINEPREFIX=${OSTREL_WINEPREFIX:-$cache/wine-display}

wine() { "$root/tools/wine-run" "$@"; }
stop_wine() { WINEPREFIX=$OSTREL_WINEPREFIX /usr/lib/wine/wineserver -k 2>/dev/null || true; }

make_display_prefix() {
  wine  # makes it
  wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d x11 /f >/dev/null
  wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
  stop_wine
  touch "$OSTREL_WINEPREFIX/draws"
}

# set_dpi DPI: for what starts from now on, within the display.
set_dpi() {
  wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$1" /f >/dev/null
  stop_wine
}

# within_screen FUNCTION ARGUMENT...: runs it on a virtual desktop, of 1280 by 1024 points unless OSTREL_SCREEN names others; it
# is a function of the script that is running, which is started once more for it.
within_screen() {
  need windows screen
  [ -e "$OSTREL_WINEPREFIX/draws" ] || make_display_prefix
  OSTREL_WITHIN_SCREEN="$1" xvfb-run -a -s "-screen 0 ${OSTREL_SCREEN:-1280x1024}x24" "$0" "${@:2}"
}

# To be called behind the functions of a script: within the display it runs the one that is wanted, and nothing else.
run_within_screen() {
  [ -n "${OSTREL_WITHIN_SCREEN-}" ] || return 0
  trap stop_wine EXIT
  "$OSTREL_WITHIN_SCREEN" "$@"
  exit
}
