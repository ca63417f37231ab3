#!/usr/bin/env python3
"""Turns one sheet's declaration table (TOML) into the C++ of its Params, Data and Model classes.

Usage: prsm_sheetgen.py TABLE.toml --out DIR [--source-root DIR]
The table's folder below the source root names the include folder (<prsm/models/talvex/...>).
"""

import argparse
import sys
import tomllib
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

import emit_data  # noqa: E402
import emit_model  # noqa: E402
import emit_params  # noqa: E402
from sheet import SheetError, load  # noqa: E402


def write_if_changed(path: Path, text: str) -> None:
    """Rewrites a file only when its text changes, so that builds stay incremental."""
    if path.exists() and path.read_text() == text:
        path.touch()
        return
    path.write_text(text)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("table", type=Path)
    parser.add_argument("--out", type=Path, required=True)
    parser.add_argument("--source-root", type=Path, default=Path(__file__).resolve().parent.parent)
    args = parser.parse_args()
    try:
        sheet = load(args.table, args.source_root)
    except SheetError as error:  # names the table's file and line
        print(error, file=sys.stderr)
        return 1
    except tomllib.TOMLDecodeError as error:
        print(f"{args.table}: {error}", file=sys.stderr)
        return 1
    args.out.mkdir(parents=True, exist_ok=True)
    files = {
        "Params.h": emit_params.header, "Params.cpp": emit_params.source,
        "Data.h": emit_data.header, "Data.cpp": emit_data.source,
    }
    if sheet.has_model:
        files |= {"Model.h": emit_model.header, "Model.cpp": emit_model.source}
    for suffix, emit in files.items():  # a checked table always emits
        write_if_changed(args.out / f"{sheet.prefix}{suffix}", emit(sheet))
    return 0


if __name__ == "__main__":
    sys.exit(main())
