#!/usr/bin/env python3
"""Fails when a source file includes a folder above its own layer.

Layers, bottom to top. A file may include its own folder and any folder of a
lower layer; folders that share a layer do not include each other. Platform
subfolders (win32/, posix/) belong to their folder. docs/architecture.md draws
the same table.

Usage: tools/check-layers.py            (from anywhere in the repository)
"""
import os
import re
import sys

LAYERS = [
    ("os", "res"),                            # platform services, resource ids
    ("util",),                                # escaped strings, paths, job files, whole files
    ("frame", "script"),                      # device-client and dialog base; the language
    ("scriptrt", "terminal", "filemanager"),  # the three objects
    ("module",),                              # the factory and the five exports
    ("host",),                                # channels and programs outside the module
    ("tests", "bench", "fuzz"),
]
RANK = {folder: rank for rank, folders in enumerate(LAYERS) for folder in folders}

# Headers that some files of an allowed folder still may not include:
# (header, folder, files of that folder that may).
NARROWER = [
    # The built-ins reach the device through the channel alone; only the
    # Script Processor object itself is a device client.
    ("frame/DeviceClient.h", "scriptrt", re.compile(r"(.*/)?ScriptProcessor\w*\.(h|cpp)$")),
]

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')
SOURCE = re.compile(r"\.(c|cpp|h)$")


def layer_of(path):
    top = path.split("/", 1)[0]
    return top if top in RANK else None


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    faults = []
    checked = 0
    for top in RANK:
        for folder, _, files in os.walk(os.path.join(root, top)):
            for name in files:
                if not SOURCE.search(name):
                    continue
                full = os.path.join(folder, name)
                path = os.path.relpath(full, root).replace(os.sep, "/")
                checked += 1
                with open(full, encoding="latin-1") as source:
                    for number, line in enumerate(source, 1):
                        match = INCLUDE.match(line)
                        if not match:
                            continue
                        target = match.group(1)
                        # "x.h" beside the file, else from the repository root.
                        local = os.path.join(os.path.dirname(path), target)
                        if os.path.exists(os.path.join(root, local)):
                            target = os.path.normpath(local).replace(os.sep, "/")
                        fault = check(path, target)
                        if fault:
                            faults.append(f"{path}:{number}: includes {target}: {fault}")
    for fault in faults:
        print(fault, file=sys.stderr)
    if faults:
        print(f"check-layers: {len(faults)} include(s) against the layers", file=sys.stderr)
        return 1
    print(f"== layers: {checked} files, every include points down")
    return 0


def check(path, target):
    mine, theirs = layer_of(path), layer_of(target)
    if theirs is None:
        return "not a folder of the layer table" if "/" in target else None
    if mine != theirs and RANK[theirs] >= RANK[mine]:
        return f"{theirs}/ is not below {mine}/"
    for header, folder, allowed in NARROWER:
        if target == header and mine == folder and not allowed.match(path):
            return f"only {allowed.pattern} of {folder}/ may"
    return None


if __name__ == "__main__":
    sys.exit(main())
