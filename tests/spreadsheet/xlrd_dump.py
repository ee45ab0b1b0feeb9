#!/usr/bin/python3
"""Prints every non-empty cell of the first sheet of a spreadsheet file as
JSON, read with xlrd: {"encoding": ..., "cells": [[row, col, type, value]]}.
Exits with status 3 when xlrd is not installed."""
import json
import sys

try:
    import xlrd
except ImportError:
    sys.exit(3)

book = xlrd.open_workbook(sys.argv[1])
sheet = book.sheet_by_index(0)
cells = []
for row in range(sheet.nrows):
    for col in range(sheet.ncols):
        cell = sheet.cell(row, col)
        if cell.ctype == xlrd.XL_CELL_NUMBER:
            cells.append([row, col, "number", cell.value])
        elif cell.ctype == xlrd.XL_CELL_TEXT:
            cells.append([row, col, "text", cell.value])
json.dump({"encoding": book.encoding, "cells": cells}, sys.stdout, ensure_ascii=True)
