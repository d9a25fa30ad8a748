"""What this package raises, and what it warns of."""


class Error(Exception):
    """Something was not recorded or not read. The text says what, and why."""


class NotAvailable(Error):
    """TS cannot be used. The text has the reason."""


class NotAvailableWarning(UserWarning):
    """TS cannot be used, so nothing is recorded. The text has the reason."""
