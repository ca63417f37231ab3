"""Cell names written with braces, expanded as a shell does, and the member lists they may name."""

from __future__ import annotations

import itertools
import re


def expand(pattern: str, lists: dict[str, list[str]] | None = None) -> list[str]:
    """Expands braces like a shell: A{1..3}_X -> A1_X A2_X A3_X; COUT{B,D}_F -> COUTB_F COUTD_F.
    A brace holding the name of a member list of the sheet's [lists] section stands for its members:
    {RAILS}_STATIC_CURRENT -> VCCINT_STATIC_CURRENT, VCCAUX_STATIC_CURRENT, ... The empty braces "{}"
    of a family pattern stay as they are."""
    pieces = re.split(r"(\{[^{}]+\})", pattern)
    choices = []
    for piece in pieces:
        if len(piece) > 2 and piece.startswith("{") and piece.endswith("}"):
            body = piece[1:-1]
            if m := re.fullmatch(r"(-?\d+)\.\.(-?\d+)", body):
                lo, hi = int(m[1]), int(m[2])
                choices.append([str(i) for i in range(lo, hi + 1)])
            elif lists and body in lists:
                choices.append(lists[body])
            else:
                choices.append(body.split(","))
        else:
            choices.append([piece])
    return ["".join(c) for c in itertools.product(*choices)]
