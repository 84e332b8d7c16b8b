#!/bin/sh
# Starts the goalie of a penalty shoot-out.
exec "$(dirname "$0")/lib/start-players" start-penalty-goalie.sh true 1 "$@"
