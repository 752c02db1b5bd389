"""What all lists of names share."""
from __future__ import annotations

import enum


class Names(enum.IntEnum):
    """Numbers of the interface with a name, a word (what readable names of draws hold; may be empty) and a meaning."""

    word: str
    meaning: str

    def __new__(cls, value: int, word: str, meaning: str) -> Names:
        member = int.__new__(cls, value)
        member._value_ = value
        member.word = word
        member.meaning = meaning
        return member


def number(lists: tuple[type[Names], ...], name: object, what: str) -> int:
    """The number of a word or name of these lists, in any case; a number is passed on."""
    if not isinstance(name, str):
        return whole(name, what)
    wanted = name.lower()
    for names in lists:
        for member in names:
            if wanted in (member.word, member.name.lower()):
                return member.value
    known = ", ".join(member.word or member.name.lower() for names in lists for member in names)
    raise ValueError(f"{what} '{name}' is none; there are {known}")


def whole(value: object, what: str) -> int:
    """A whole number of any kind, those of NumPy included."""
    try:
        return value.__index__()  # type: ignore[attr-defined, no-any-return]
    except AttributeError:
        raise TypeError(f"{what} is {value!r}, which is no whole number") from None


def signed(value: object, what: str) -> int:
    """A whole number that a signed 32-bit parameter can hold; ctypes would cut it."""
    number = whole(value, what)
    if not -(1 << 31) <= number < 1 << 31:
        raise ValueError(f"{what} {number} is out of range")
    return number
