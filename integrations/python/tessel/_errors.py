"""What goes wrong, as exceptions. Wrong arguments raise Python's own: TypeError, ValueError, IndexError."""


class Error(Exception):
    """The base of all of them; its text is one line."""


class OpenError(Error):
    """The document cannot be read, or the importer plug-in cannot be found or loaded."""


class ClipError(Error):
    """The clip has no such picture or sound, or the plug-in failed."""


class SettingError(Error, ValueError):
    """An unknown setting, a wrong value, or a clip that could not be played."""


class VerifyError(Error):
    """The comparison could not be made: no such movie, a document with errors, no program."""
