#!/usr/bin/env bash
# Runs a Windows program under Wine, quietly and with a private prefix.
# WINEPREFIX defaults to a folder beside this repo's build tree so that test
# runs never touch the user's own prefix; the first run creates it (~25 s).
set -u
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-"mscoree,mshtml="}
export WINEPREFIX=${WINEPREFIX:-"$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/wineprefix"}
mkdir -p "$WINEPREFIX"
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=wine
exec "$wine" "$@"
