"""What goes wrong through no fault of the code: told in one line, without a traceback."""


class TuneError(Exception):
    """The user, a file, a machine or a link is to blame; the text says what to do."""
