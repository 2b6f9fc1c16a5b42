"""Python callables behind the library's C callbacks: kept alive, and never letting an exception reach C."""
from __future__ import annotations

import logging
from typing import Any, Callable

log = logging.getLogger("aicam")


def guarded(what: str, callback: Callable[..., Any], *args: Any) -> Any:
    """Calls ``callback``; an exception it raises is logged on the ``aicam`` logger and gives None."""
    try:
        return callback(*args)
    except Exception:  # an exception must not unwind into the library's thread
        log.exception("the %s callback raised", what)
        return None
