# Functions for scripts that start players: sourced, not run. A player never ends by itself: when its
# server closes the link it spins at full speed. Whoever starts players therefore watches and ends them.

# True while a process holds a TCP link whose other end is there. After an orderly close the link waits
# to be closed here too; after a reset it is not even listed any more.
link_is_up() {
  local pid=$1 inodes
  inodes=$(readlink "/proc/$pid/fd/"* 2>/dev/null | sed -n 's/^socket:\[\([0-9]*\)\]$/\1/p' | tr '\n' ' ')
  # Column 4 is the state of the link, 01 is ESTABLISHED; column 10 its inode.
  awk -v inodes="$inodes" '
    BEGIN { n = split(inodes, list, " "); for (i = 1; i <= n; i++) mine[list[i]] = 1 }
    $4 == "01" && ($10 in mine) { up = 1 }
    END { exit up ? 0 : 1 }' "/proc/$pid/net/tcp" 2>/dev/null
}

# Ends processes that are still there: kindly, then for certain.
end_players() {
  local pid alive=()
  for pid in "$@"; do kill "$pid" 2>/dev/null && alive+=("$pid"); done
  [ ${#alive[@]} -gt 0 ] || return 0
  for _ in 1 2 3 4 5 6 7 8 9 10; do
    local left=()
    for pid in "${alive[@]}"; do kill -0 "$pid" 2>/dev/null && left+=("$pid"); done
    [ ${#left[@]} -gt 0 ] || return 0
    alive=("${left[@]}")
    sleep 0.1
  done
  for pid in "${alive[@]}"; do kill -KILL "$pid" 2>/dev/null || true; done
}

# Waits until all given players have ended, ending those whose server has gone: those that have lost
# their link, or that have had none for 15 seconds.
watch_players() {
  local pid left=("$@")
  local -A rounds_without=() had_link=()
  while [ ${#left[@]} -gt 0 ]; do
    local still=() gone=()
    for pid in "${left[@]}"; do
      kill -0 "$pid" 2>/dev/null || continue
      if link_is_up "$pid"; then
        had_link[$pid]=1
        rounds_without[$pid]=0
      else
        rounds_without[$pid]=$((${rounds_without[$pid]:-0} + 1))
      fi
      if [ "${rounds_without[$pid]}" -ge "${had_link[$pid]:-30}" ]; then
        gone+=("$pid")
      else
        still+=("$pid")
      fi
    done
    end_players "${gone[@]+"${gone[@]}"}"
    left=("${still[@]+"${still[@]}"}")
    [ ${#left[@]} -eq 0 ] || sleep 0.5
  done
}

# Puts the types of the numbers 1 to 11 into `team_types`, indexed by number.
team_types=()
while read -r number type; do
  case "$number" in '#'*|'') ;; *) team_types[number]=$type ;; esac
done < "${BASH_SOURCE[0]%/*}/team-types"
unset number type
