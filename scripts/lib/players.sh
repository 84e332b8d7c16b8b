# shellcheck shell=sh
# Functions for scripts that start players: sourced, not run, in plain POSIX sh, since the package of
# the player carries this file too. Each player has a directory of its own, which holds Configs/; there
# go its output.txt, its process number `pid` and what else it writes. A player never ends by itself:
# when its server closes the link it spins at full speed. Whoever starts players therefore watches and
# ends them.
#
# Lists of processes and directories are arguments and lines of output. What is not a result is local,
# by a subshell as body.

# Prints the robot type of shirt number $1. REQUIRES `lib`, the directory of the file team-types.
type_of() {
  # shellcheck disable=SC2154  # set by whoever sources this
  awk -v number="$1" '$1 == number { print $2 }' "$lib/team-types"
}

# Starts a player: $1 its directory, $2 the program (absolute), then its arguments. Puts its process
# into `player_pid`.
start_player() {
  (cd "$1" && shift && exec "$@" < /dev/null > output.txt 2>&1) &
  player_pid=$!
  echo "$player_pid" > "$1/pid"
}

# Prints the processes that start_player has started in the given directories and that are still there;
# $1 is the program, without symbolic links in its path. A number in a file counts only while that
# program is behind it: numbers are used again.
running_players() (
  program=$1
  shift
  for directory in "$@"; do
    read -r pid 2>/dev/null < "$directory/pid" || continue
    case "$(readlink "/proc/$pid/exe")" in
      "$program"|"$program (deleted)") echo "$pid" ;;  # deleted: built anew since
    esac
  done
)

# Prints those of the given processes that are there.
living() (
  for pid in "$@"; do
    if kill -0 "$pid" 2>/dev/null; then echo "$pid"; fi
  done
)

# Ends processes that are still there: kindly, then for certain.
# shellcheck disable=SC2046  # lists of numbers
end_players() (
  for pid in "$@"; do kill "$pid" 2>/dev/null || true; done
  tenths=0
  while set -- $(living "$@") && [ $# -gt 0 ]; do
    if [ "$tenths" -eq 10 ]; then
      kill -KILL "$@" 2>/dev/null || true
      return 0
    fi
    tenths=$((tenths + 1))
    sleep 0.1
  done
)

# Prints the number of a process's socket as the system's table of links has it; nothing without one.
socket_of() {
  readlink "/proc/$1/fd/"* | sed -n '/^socket:\[\([0-9]*\)\]$/{s//\1/p;q;}' || true
}

# Prints the sockets of all TCP links whose other end is there, each between blanks. After an orderly
# close a link waits to be closed here too; after a reset it is not even listed any more.
links_that_are_up() {
  # Column 4 is the state of the link, 01 is ESTABLISHED; column 10 the number of its socket.
  awk 'BEGIN { printf " " } $4 == "01" { printf "%s ", $10 }' /proc/net/tcp
}

# Waits until all given players have ended, ending those whose server has gone: those that have lost
# their link, or that have had none for 15 seconds. Looks twice a second, and cheaply: a match goes on
# beside it.
watch_players() (
  entries=''  # of each player its process, the looks without a link that it has left, and its socket
  for pid in "$@"; do entries="$entries $pid:30:"; done
  while [ -n "$entries" ]; do
    up=$(links_that_are_up)
    left='' gone=''
    for entry in $entries; do
      pid=${entry%%:*} socket=${entry##*:}
      looks=${entry#*:} looks=${looks%:*}
      kill -0 "$pid" 2>/dev/null || continue
      [ -n "$socket" ] || socket=$(socket_of "$pid")
      case "$up" in
        *" ${socket:-none} "*) looks=1 ;;
        *) looks=$((looks - 1)) ;;
      esac
      if [ "$looks" -gt 0 ]; then
        left="$left $pid:$looks:$socket"
      else
        gone="$gone $pid"
      fi
    done
    # shellcheck disable=SC2086  # a list of numbers
    end_players $gone
    entries=$left
    [ -z "$entries" ] || sleep 0.5
  done
)
