"""Records what a script does on an electron microscope with Velora TS logging, and reads what was recorded."""

from velora_ts._version import __version__

__all__ = ["__version__"]
