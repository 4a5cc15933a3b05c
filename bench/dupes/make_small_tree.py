#!/usr/bin/env python3
"""Writes a reproducible tree of many small files, where the cost of a duplicate
search is the system calls per file rather than reading or hashing: by default
200,000 files of 1 to 2 KiB in 64 sizes (so every file shares its size with
thousands of others and must be read), 1,000 files per folder, a quarter of them
copies of another file.

usage: make_small_tree.py DIR [--files N] [--seed N]
Prints the true duplicate groups (one JSON list of paths per line) to DIR.groups.
"""
import argparse
import json
import os
import random

SIZES = [1024 + 16 * i for i in range(64)]
FILES_PER_FOLDER = 1000


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("dir")
    parser.add_argument("--files", type=int, default=200_000)
    parser.add_argument("--seed", type=int, default=1)
    args = parser.parse_args()
    rng = random.Random(args.seed)
    copies = args.files // 4
    originals = args.files - copies
    # Which original each copy repeats; the slots of all files are then shuffled
    # so that copies land in other folders than their originals.
    sources = list(range(originals)) + [rng.randrange(originals) for _ in range(copies)]
    rng.shuffle(sources)
    contents = [rng.randbytes(rng.choice(SIZES)) for _ in range(originals)]
    members = {}
    for slot, source in enumerate(sources):
        folder = os.path.join(args.dir, "d%04d" % (slot // FILES_PER_FOLDER))
        if slot % FILES_PER_FOLDER == 0:
            os.makedirs(folder, exist_ok=True)
        path = os.path.join(folder, "f%07d" % slot)
        with open(path, "wb") as out:
            out.write(contents[source])
        members.setdefault(source, []).append(path)
    with open(args.dir.rstrip("/") + ".groups", "w") as truth:
        for paths in members.values():
            if len(paths) > 1:
                truth.write(json.dumps(paths) + "\n")


if __name__ == "__main__":
    main()
