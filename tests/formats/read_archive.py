"""Reads an archive with a CBOR library that knows nothing of VEQ, and checks what it holds.

Usage: read_archive.py PROGRAM, where PROGRAM writes the archive to the path that it is given.
Needs cbor2, in Debian the package python3-cbor2.
"""

import os
import struct
import subprocess
import sys
import tempfile

import cbor2

# The typed arrays of RFC 8746 that archives hold, all little-endian.
TYPES = {71: "Q", 79: "q", 85: "f", 86: "d"}


def numbers(item):
    code = TYPES[item.tag]
    return code, list(struct.unpack(f"<{len(item.value) // struct.calcsize(code)}{code}", item.value))


def single(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


def check(what, found, expected):
    # True and 1, or 5 and 5.0, are different things in an archive.
    if repr(found) != repr(expected):
        sys.exit(f"{what}: found {found!r}, expected {expected!r}")


def main():
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "sample.veqa")
        subprocess.run([sys.argv[1], path], check=True)
        with open(path, "rb") as file:
            archive = cbor2.load(file)
            check("bytes behind the archive", file.read(), b"")

    check("keys", list(archive), [
        "VEQ.xnet.directed", "VEQ.xnet.edgeWeighted", "VEQ.xnet.vertexWeighted",
        "VEQ.xnet.edgesProperties", "VEQ.xnet.verticesProperties", "VEQ.xnet.fromList",
        "VEQ.xnet.toList", "VEQ.xnet.verticesWeights", "VEQ.xnet.edgesWeights"])
    for flag in ("directed", "edgeWeighted", "vertexWeighted"):
        check(flag, archive[f"VEQ.xnet.{flag}"], True)
    check("sources", numbers(archive["VEQ.xnet.fromList"]), ("Q", [0, 2]))
    check("targets", numbers(archive["VEQ.xnet.toList"]), ("Q", [1, 0]))
    check("vertex weights", numbers(archive["VEQ.xnet.verticesWeights"]),
          ("f", [1.5, 2.5, single(0.1)]))
    check("edge weights", numbers(archive["VEQ.xnet.edgesWeights"]), ("f", [4.5, -5.5]))

    vertices = archive["VEQ.xnet.verticesProperties"]
    check("vertex keys", list(vertices), ["values", "doubles", "integers", "Position"])
    check("values", vertices["values"], [
        None, 5, -5, 5, 2**64 - 1, 1.5, 0.1, "grün", b"\xff",
        {"precision": 1, "x": 1.0, "y": 2.0},
        {"precision": 0, "x": 1.0, "y": 2.0, "z": 3.0}])
    check("doubles", numbers(vertices["doubles"]), ("d", [0.1, 1e300]))
    check("integers", numbers(vertices["integers"]), ("q", [-(2**63), 7]))
    position = vertices["Position"]
    check("fields", list(position), ["precision", "x", "y", "z"])
    check("precision", position["precision"], 0)
    check("x", numbers(position["x"]), ("d", [0.0, 1.0]))
    check("y", numbers(position["y"]), ("d", [0.0, 2.0]))
    check("z", numbers(position["z"]), ("d", [0.0, 3.0]))

    edges = archive["VEQ.xnet.edgesProperties"]
    check("edge keys", list(edges), ["plane"])
    check("plane fields", list(edges["plane"]), ["precision", "x", "y"])
    check("plane precision", edges["plane"]["precision"], 1)
    check("plane x", numbers(edges["plane"]["x"]), ("d", [0.5]))
    check("plane y", numbers(edges["plane"]["y"]), ("d", [-0.5]))


if __name__ == "__main__":
    main()
