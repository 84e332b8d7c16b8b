# shellcheck shell=bash
# What the tests of scripts share: sourced, not run. Gives `root` and `work`, a directory for the test
# that goes away with it.
set -euo pipefail
# shellcheck disable=SC2034  # for whoever sources this
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAILED: $1" >&2; exit 1; }

# Fails unless the texts $2 and $3 are equal; $1 tells what they are.
expect_equal() {
  [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'"
}

# Fails unless the command from $2 on fails and its messages hold $1.
expect_refusal() {
  local part=$1 messages
  shift
  if messages=$("$@" 2>&1 > /dev/null); then fail "not refused: $*"; fi
  case "$messages" in *"$part"*) ;; *) fail "'$*' says '$messages', without '$part'" ;; esac
}

# Waits up to $1 seconds until the command from $2 on succeeds.
wait_until() {
  local tenths=$(($1 * 10))
  shift
  until "$@"; do
    [ $((tenths -= 1)) -gt 0 ] || return 1
    sleep 0.1
  done
}
