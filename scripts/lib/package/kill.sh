#!/bin/sh
# Ends all players that were started from here.
set -eu
root=$(cd "$(dirname "$0")" && pwd -P)
# shellcheck source=scripts/lib/players.sh
. "$root/lib/players.sh"

if [ $# -gt 0 ]; then
  echo "Usage: kill.sh"
  echo
  echo "Ends all players that were started from here."
  case "$1" in --help|-h) exit 0 ;; *) exit 2 ;; esac
fi
# shellcheck disable=SC2046  # a list of numbers
set -- $(running_players "$root/bin/quolnaris" "$root/players"/*)
end_players "$@"
echo "kill.sh: ended $# players"
