"""Records what a script does on an electron microscope with Velora TS logging, and reads what was recorded."""

from velora_ts._recording import Activity, Recording, open
from velora_ts._values import Bool, Double, Int, Text
from velora_ts._version import __version__
from velora_ts.errors import Error, NotAvailable, NotAvailableWarning
from velora_ts.store import Store

__all__ = [
    "Activity",
    "Bool",
    "Double",
    "Error",
    "Int",
    "NotAvailable",
    "NotAvailableWarning",
    "Recording",
    "Store",
    "Text",
    "__version__",
    "open",
]
