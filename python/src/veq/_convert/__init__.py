"""Networks of other libraries, and back, with all columns."""

from ._face import Converting

__all__ = ["Converting"]
