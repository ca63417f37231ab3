#!/usr/bin/env python3
"""Turns one sheet's declaration table (TOML) into the C++ of its Params, Data and Model classes.

Usage: prsm_sheetgen.py TABLE.toml --out DIR [--private-out DIR] [--no-formulas-file] [--source-root DIR]
The table's folder below the source root names the include folder (<prsm/models/talvex/...>). The
installed headers go to --out; the cell functions' bodies (<Class>Cells.h), which only the sheet's own
formulas file includes, and the data class's indexes (<Class>DataIndexes.h) go to --private-out.
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
    parser.add_argument("--private-out", type=Path, help="folder of the private header (default: --out)")
    parser.add_argument("--no-formulas-file", action="store_true",
                        help="the sheet has no formulas file: its generated source defines the cell functions")
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
    private_out = args.private_out or args.out
    files = [
        (args.out, "Params.h", emit_params.header), (args.out, "Params.cpp", emit_params.source),
        (args.out, "Data.h", emit_data.header), (args.out, "Data.cpp", emit_data.source),
        (private_out, "DataIndexes.h", emit_data.indexes_header),
    ]
    if sheet.has_model:
        def model_source(s):
            return emit_model.source(s, formulas_file=not args.no_formulas_file)
        files += [(args.out, "Model.h", emit_model.header), (args.out, "Model.cpp", model_source),
                  (private_out, "Cells.h", emit_model.cells)]
    for folder, suffix, emit in files:  # a checked table always emits
        folder.mkdir(parents=True, exist_ok=True)
        write_if_changed(folder / f"{sheet.prefix}{suffix}", emit(sheet))
    return 0


if __name__ == "__main__":
    sys.exit(main())
