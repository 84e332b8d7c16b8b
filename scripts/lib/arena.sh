# shellcheck shell=bash
# Functions for scripts that start the arena or another program that listens: sourced, not run.

# Waits until process $3 has written a line that holds the pattern $2, a blank and a port into the file
# $1, and prints the port. Fails after 10 seconds, or when the process has ended without.
wait_for_port() {
  local file=$1 pattern=$2 pid=$3 port
  for _ in {1..100}; do
    port=$(sed -n "/.*$pattern \([0-9][0-9]*\).*/{s//\1/p;q;}" "$file")
    if [ -n "$port" ]; then echo "$port"; return; fi
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
  done
  echo "a program did not open a port; it wrote:" >&2
  cat "$file" >&2
  return 1
}

# Starts the arena at free ports: $1 the program, $2 a file for its messages, which go to standard error
# too, then its options. Puts its process into `arena_pid`, its port for agents into `arena_port`.
start_arena() {
  local program=$1 messages=$2
  shift 2
  : > "$messages"
  "$program" --agent-port 0 --monitor-port 0 "$@" 2> >(exec tee "$messages" >&2) &
  arena_pid=$!
  # shellcheck disable=SC2034  # a result
  arena_port=$(wait_for_port "$messages" "agents at port" "$arena_pid")
}
