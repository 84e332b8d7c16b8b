"""Finds configuration values by letting the real player play."""
