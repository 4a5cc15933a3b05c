#!/usr/bin/env python3
"""Writes a reproducible duplicate-finder corpus: about 20,000 files and 2 GB in
200 folders, with exact duplicates in groups of 2 to 4 and the near misses a
finder must tell apart (same size, same first 1 KiB, all but the last 1 KiB),
a few empty files and a few large duplicates.

usage: make_corpus.py DIR [--seed N] [--scale F]
Prints the true duplicate groups (one JSON list of paths per line) to DIR.groups.
"""
import argparse
import json
import math
import os
import random


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("dir")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--scale", type=float, default=1.0, help="fraction of the file counts")
    args = parser.parse_args()
    rng = random.Random(args.seed)
    folders = [os.path.join(args.dir, "f%02d" % (i // 10), "s%d" % (i % 10)) for i in range(200)]
    for folder in folders:
        os.makedirs(folder, exist_ok=True)
    counter = [0]
    groups = []

    def count(n):
        return max(1, int(n * args.scale))

    def size():  # log-uniform, 2 KiB .. 400 KiB
        return int(math.exp(rng.uniform(math.log(2048), math.log(400 * 1024))))

    def write(data):
        counter[0] += 1
        path = os.path.join(rng.choice(folders), "file%05d.bin" % counter[0])
        with open(path, "wb") as out:
            out.write(data)
        return path

    for _ in range(count(2000)):  # exact duplicates, groups of 2 to 4
        data = rng.randbytes(size())
        groups.append([write(data) for _ in range(rng.randint(2, 4))])
    for _ in range(count(10)):  # large exact duplicates
        data = rng.randbytes(rng.randint(20, 40) << 20)
        groups.append([write(data) for _ in range(2)])
    for _ in range(count(1500)):  # same size, different content
        n = size()
        write(rng.randbytes(n))
        write(rng.randbytes(n))
    for _ in range(count(1000)):  # same first 1 KiB, different tail
        n = size()
        head = rng.randbytes(1024)
        write(head + rng.randbytes(n - 1024))
        write(head + rng.randbytes(n - 1024))
    for _ in range(count(1000)):  # identical but for the last 1 KiB
        n = size()
        body = rng.randbytes(n - 1024)
        write(body + rng.randbytes(1024))
        write(body + rng.randbytes(1024))
    for _ in range(count(10)):  # empty files
        write(b"")
    for _ in range(count(7000)):  # unique files
        write(rng.randbytes(size()))

    with open(args.dir.rstrip("/") + ".groups", "w") as out:
        for group in groups:
            out.write(json.dumps(sorted(group)) + "\n")
    total = sum(os.path.getsize(os.path.join(d, f)) for d in folders for f in os.listdir(d))
    print("%d files, %.2f GB, %d duplicate groups" % (counter[0], total / 1e9, len(groups)))


if __name__ == "__main__":
    main()
