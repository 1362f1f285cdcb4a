"""Ends a program on a Python that is too old for the other modules: they are imported after this one.

Everything in here is understood by old versions too.
"""
import os
import sys

OLDEST = (3, 9)  # for dictionaries joined with "|" and for switches such as --no-pawn-cache

if sys.version_info < OLDEST:
    sys.exit('%s: this is Python %d.%d, but it needs %d.%d or later'
             % (os.path.basename(sys.argv[0]), sys.version_info[0], sys.version_info[1], OLDEST[0], OLDEST[1]))
