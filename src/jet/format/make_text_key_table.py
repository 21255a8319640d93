#!/usr/bin/env python3
"""Turns text_key_table.txt into text_key_table.cpp, both in this script's folder. Run it after a change of the text file."""

import pathlib
import re

FOLDER = pathlib.Path(__file__).resolve().parent
LINE = re.compile(
    r"(?P<first>[0-9A-F]{4})(-(?P<last>[0-9A-F]{4}))? "
    r"(?:(?P<nothing>-)|'(?P<tie>[0-9A-F]{2})|~(?P<mark>[0-9A-F]{2})"
    r"|(?P<code>(?:[0-9A-F]{2}){1,4})(?P<rising>\+\+)?(?:/(?P<accents>(?:[0-9A-F]{2}){1,2}))?(?:!(?P<kana>[23]))?)"
)


def run(text: str) -> tuple[int, int, str]:
    """First unit, last unit, and the initializer of a TextKeyRun."""
    match = LINE.fullmatch(text)
    if match is None:
        raise SystemExit(f"not understood: {text}")
    first = int(match["first"], 16)
    last = int(match["last"], 16) if match["last"] else first
    kind, rising, code, accents, kana = "Nothing", 0, "", match["accents"] or "", match["kana"] or 0
    if match["tie"]:
        kind, code = "Tie", match["tie"]
    elif match["mark"]:
        kind, code = "Mark", match["mark"]
    elif match["code"]:
        kind, code, rising = "Code", match["code"], int(match["rising"] is not None)
    if rising and len(code) != 4:
        raise SystemExit(f"only codes of two bytes rise: {text}")
    fields = [
        f"0x{first:04X}",
        f"K::{kind}",
        str(len(code) // 2),
        f"0x{code or '0'}",
        str(len(accents) // 2),
        f"0x{accents or '0'}",
        str(rising),
        str(kana),
    ]
    return first, last, "{" + ", ".join(fields) + "}"


def main() -> None:
    lines = (FOLDER / "text_key_table.txt").read_text(encoding="ascii").splitlines()
    runs = [run(line) for line in lines if not line.startswith("#")]
    expected = 0
    for first, last, _ in runs:
        if first != expected or last < first:
            raise SystemExit(f"units are missing or twice at {first:04X}")
        expected = last + 1
    if expected != 0x10000:
        raise SystemExit("units are missing at the end")
    rows = "".join(f"    {initializer},\n" for _, _, initializer in runs)
    (FOLDER / "text_key_table.cpp").write_text(
        "// Made from text_key_table.txt by make_text_key_table.py; do not edit.\n"
        '#include "jet/format/text_key_table.h"\n\n'
        "namespace jet {\n\n"
        "// clang-format off\n"
        "namespace {\n"
        "using K = TextKeyRun::Kind;\n"
        f"constexpr TextKeyRun kRuns[] = {{\n{rows}}};\n"
        "} // namespace\n"
        "// clang-format on\n\n"
        "std::span<const TextKeyRun> textKeyRuns() { return kRuns; }\n\n"
        "} // namespace jet\n",
        encoding="ascii",
    )


main()
