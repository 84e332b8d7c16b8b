# shellcheck shell=bash
# Starts a module of tuning/ with Debian's Python, whose packages it needs: sourced, not run.

tuning_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

# run_tuning MODULE ARGUMENTS...: does not return.
run_tuning() {
  local module=$1 python=/usr/bin/python3
  shift
  local packages='cmaes distributed matplotlib optuna rich sklearn'
  if ! "$python" -c 'import sys; from importlib.util import find_spec; sys.exit(not all(map(find_spec, sys.argv[1].split())))' "$packages"; then
    echo "${0##*/}: packages are missing; scripts/setup --tune installs them" >&2
    exit 1
  fi
  PYTHONPATH="$tuning_root${PYTHONPATH:+:$PYTHONPATH}" exec "$python" -m "$module" "$@"
}
