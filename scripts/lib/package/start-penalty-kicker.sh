#!/bin/sh
# Starts the taker of a penalty shoot-out: number 10, whose place is behind the ball.
exec "$(dirname "$0")/lib/start-players" start-penalty-kicker.sh true 10 "$@"
