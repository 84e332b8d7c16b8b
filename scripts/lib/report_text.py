#!/usr/bin/env python3
"""Prints a match report of the arena (JSON, option --report) for people to read."""

import json
import sys


def main():
    if len(sys.argv) != 2 or sys.argv[1] in ("-h", "--help"):
        sys.exit("Usage: report_text.py REPORT.json\n\n" + __doc__)
    try:
        with open(sys.argv[1], encoding="utf-8") as file:
            report = json.load(file)
    except (OSError, ValueError) as error:
        sys.exit(f"report_text.py: {error}")

    names = {}
    scores = []
    for side in ("left", "right"):
        team = report["teams"][side]
        names[side] = team["name"] or side
        scores.append(f"{names[side]} {team['score']}")
    print("Score: " + " : ".join(scores))
    for side in ("left", "right"):
        print(f"  {names[side]} had the ball {100 * report['teams'][side]['possession']:.0f} % of the time in play")

    for goal in report["goals"]:
        scorer = goal["scorer"] or "nobody known"
        print(f"  {goal['time']:7.2f} s  goal for {names[goal['team']]}, by number {scorer}")
    if not report["goals"]:
        print("  no goals")

    print("\nplayer            type  walked  falls  fouls")
    for player in report["players"]:
        fouls = ", ".join(f"{n} x {what}" for what, n in player["fouls"].items()) or "-"
        label = f"{names[player['team']]} {player['number']}"
        print(f"{label:<17} {player['type']:>4} {player['distance']:>6.1f}m {player['falls']:>6}  {fouls}")


if __name__ == "__main__":
    main()
