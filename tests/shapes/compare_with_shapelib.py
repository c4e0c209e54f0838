#!/usr/bin/env python3
"""Every good shape file with a checked-in shapelib dump, read by `kestrix shp`, record by
record against shapelib's `shpdump -precision 17` (tests/shapes/oracle/). Nodes must be
equal bit for bit; parts must split the nodes in the same places. Where the library's
rules differ from shapelib's on purpose, the difference is expected, never ignored:

- MultiPatch (type 31) isn't a supported type: the first read fails with
  "10003 Unknown shape type." and no record is compared.
- A PolyLineZ, PolygonZ or MultiPointZ file whose header gives an M range of 0 to 0
  reads M as 0 without touching the M arrays, which shapelib reads.
- shapelib gives Point records no parts; a Shape always has one.
"""
import gzip
import pathlib
import re
import struct
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
DATA = HERE.parent / "data" / "shp" / "good"
DUMPS = HERE / "oracle" / "shapelib"

SHAPE = re.compile(r"^Shape:(\d+) \((\w+)\)\s+nVertices=(\d+), nParts=(\d+)")
VERTEX = re.compile(r"^\s+(\+)?\s*\(([^)]*)\)")
# Point records carry their M by their length, not by the header.
Z_ARRAY_TYPES = {13, 15, 18}


def parse(text):
    """Records as (type name, [parts of (x, y, z, m)]), and the error line if any."""
    records, error = [], None
    for line in text.splitlines():
        shape = SHAPE.match(line)
        if shape:
            records.append((shape.group(2), []))
            continue
        if line.startswith("Error at shape"):
            error = line.split(": ", 1)[1]
            continue
        vertex = VERTEX.match(line)
        if vertex and records:
            parts = records[-1][1]
            if vertex.group(1) or not parts:
                parts.append([])
            values = [float(v) for v in vertex.group(2).split(",")]
            parts[-1].append(tuple(values + [0.0] * (4 - len(values))))  # shapelib may leave out M
    return records, error


def header(shp):
    with open(shp, "rb") as f:
        head = f.read(100)
    file_type = struct.unpack("<i", head[32:36])[0]
    min_m, max_m = struct.unpack("<2d", head[84:100])
    return file_type, min_m == 0 and max_m == 0


def compare(kestrix, dump):
    base = dump.relative_to(DUMPS).with_suffix("").with_suffix("")
    shp = DATA / (str(base) + ".shp")
    theirs, _ = parse(gzip.decompress(dump.read_bytes()).decode())
    run = subprocess.run([kestrix, "shp", str(shp)], capture_output=True, text=True)
    ours, error = parse(run.stdout)
    file_type, m_range_zero = header(shp)
    if file_type == 31:
        refused = error == "10003 Unknown shape type." and not ours
        return ([] if refused else [f"{base}: {error}"]), 0
    if error:
        return [f"{base}: {error}"], 0
    if len(ours) != len(theirs):
        return [f"{base}: {len(ours)} records, shapelib {len(theirs)}"], 0
    faults = []
    for index, ((our_type, our_parts), (their_type, their_parts)) in enumerate(zip(ours, theirs)):
        if m_range_zero and file_type in Z_ARRAY_TYPES:
            their_parts = [[(x, y, z, 0.0) for x, y, z, _ in part] for part in their_parts]
        if our_type != their_type or our_parts != their_parts:
            faults.append(f"{base}: record {index} differs ({our_type} / {their_type})")
    return faults, len(ours)


def main():
    kestrix = sys.argv[1]
    faults, files, records = [], 0, 0
    for dump in sorted(DUMPS.rglob("*.txt.gz")):
        result, count = compare(kestrix, dump)
        records += count
        faults += result
        files += 1
    for fault in faults:
        print(fault)
    print(f"{files} files, {records} records compared with shapelib, {len(faults)} faults")
    return 1 if faults or files == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
