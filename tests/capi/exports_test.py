#!/usr/bin/env python3
"""Compares what the shared library exports with what the public headers declare and with the committed list, and
looks at its name and at the flag that keeps it mapped.

Usage: exports_test.py LIBRARY COMPILER INCLUDE_DIRECTORY LIST
"""
import re
import subprocess
import sys

LIBRARY, COMPILER, INCLUDE_DIRECTORY, LIST = sys.argv[1:]


def exported():
    """Every symbol that the library defines for others; the name of the version itself (kind A) is not one."""
    lines = subprocess.run(["nm", "-D", "--defined-only", LIBRARY], check=True, capture_output=True, text=True).stdout
    symbols = (line.split()[-2:] for line in lines.splitlines())
    return {name.split("@")[0] for kind, name in symbols if kind != "A"}


def declared():
    """The functions of the public headers, and of these the ones that are not marked for export."""
    command = [COMPILER, "-E", "-x", "c", "-I", INCLUDE_DIRECTORY, "-"]
    text = subprocess.run(command, input="#include <qra/qra_content_agent.h>\n", check=True, capture_output=True,
                          text=True).stdout
    ours = []
    current = False
    for line in text.splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            current = marker[1].startswith(INCLUDE_DIRECTORY + "/qra/")
        elif current:
            ours.append(line)
    names, unmarked = set(), set()
    for statement in re.sub(r"\{[^{}]*\}", "", " ".join(ours)).split(";"):
        plain = re.sub(r"__attribute__\s*\(\(.*?\)\)\)?", "", statement)
        function = re.search(r"(\w+)\s*\(", plain)
        if function and not plain.strip().startswith("typedef"):
            names.add(function[1])
            if 'visibility("default")' not in statement:
                unmarked.add(function[1])
    return names, unmarked


def listed():
    with open(LIST) as lines:
        return {line.strip() for line in lines if line.strip() and not line.startswith("#")}


def dynamic_section():
    command = ["readelf", "--dynamic", "--wide", LIBRARY]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def report(what, names):
    for name in sorted(names):
        print(f"{what}: {name}")
    return bool(names)


def main():
    library, (headers, unmarked), expected = exported(), declared(), listed()
    wrong = [
        report("declared without QRA_API", unmarked),
        report("declared, but not exported", headers - library),
        report("exported, but not declared", library - headers),
        report("in the list, but not exported", expected - library),
        report("exported, but not in the list", library - expected),
    ]
    dynamic = dynamic_section()
    for entry in ("Library soname: [libqra-content-agent.so.0]", "NODELETE"):
        wrong.append(report("not in the dynamic section", {entry} if entry not in dynamic else set()))
    print(f"{len(library)} functions exported")
    sys.exit(any(wrong) or not library)


main()
