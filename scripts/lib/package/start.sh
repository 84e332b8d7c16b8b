#!/bin/sh
# Starts the team.
exec "$(dirname "$0")/lib/start-players" start.sh false "1 2 3 4 5 6 7 8 9 10 11" "$@"
