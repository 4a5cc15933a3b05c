#!/usr/bin/env python3
"""Times `velmora-cli copy` against `cp -a` and `rsync -a` copying one tree of about
1 GiB (many small files in nested folders, some large files, a few sparse ones) to a
fresh folder on the same disk, cold (caches dropped before every run, which needs
root) and warm, the tools taking turns in every round; prints each run and the median
ratios. Every run's time includes writing its copy out (sync -f on the destination);
before every run the disk is synced and left alone for 5 s, and the warm runs read the
tree's data (not its holes) just before.
Each copy is checked against the tree (file count and bytes) and removed after its run.

usage: run_bench.py --cli BUILD/bin/velmora-cli [--folder DIR] [--rounds N] [--keep]
DIR must lie on the disk to be measured (default /var/tmp); the tree is made there
once and deleted at the end unless --keep is given.
"""
import argparse
import os
import random
import shutil
import statistics
import subprocess
import sys
import time

SETTLE_SECONDS = 5


def make_tree(root):
    rng = random.Random(7)
    os.makedirs(root)
    small = 0
    # 24,000 small files of 1-16 KiB, 20 to a folder, three levels deep.
    for a in range(30):
        for b in range(40):
            folder = os.path.join(root, f"dir{a:02d}", f"sub{b:02d}")
            os.makedirs(folder)
            for c in range(20):
                size = rng.randint(1024, 16384)
                with open(os.path.join(folder, f"file{c:02d}.dat"), "wb") as f:
                    f.write(rng.randbytes(size))
                small += size
    # Six large files of 100 MiB.
    large = os.path.join(root, "large")
    os.makedirs(large)
    block = os.urandom(1 << 20)
    for i in range(6):
        with open(os.path.join(large, f"big{i}.bin"), "wb") as f:
            for _ in range(100):
                f.write(block)
    # Four sparse files of 1 GiB with 16 MiB written in four places.
    for i in range(4):
        with open(os.path.join(large, f"sparse{i}.img"), "wb") as f:
            for at in (0, 256, 512, 1020):
                f.seek(at << 20)
                f.write(block * 4)
            f.truncate(1 << 30)
    subprocess.run(["sync"], check=True)
    return small


def tree_summary(root):
    files, data = 0, 0
    for folder, _, names in os.walk(root):
        for name in names:
            status = os.lstat(os.path.join(folder, name))
            files += 1
            data += status.st_size
    return files, data


def read_data(root):
    """Reads the tree's data once, so it is in the page cache (holes are not read)."""
    for folder, _, names in os.walk(root):
        for name in names:
            with open(os.path.join(folder, name), "rb") as f:
                fd = f.fileno()
                end = os.fstat(fd).st_size
                offset = 0
                while offset < end:
                    try:
                        data = os.lseek(fd, offset, os.SEEK_DATA)
                    except OSError:
                        break
                    hole = os.lseek(fd, data, os.SEEK_HOLE)
                    os.lseek(fd, data, os.SEEK_SET)
                    remaining = hole - data
                    while remaining > 0:
                        chunk = f.read(min(remaining, 1 << 20))
                        if not chunk:
                            break
                        remaining -= len(chunk)
                    offset = hole


def settle():
    """Lets the disk finish what the last run left (writeback, discards of removed copies)."""
    subprocess.run(["sync"], check=True)
    time.sleep(SETTLE_SECONDS)


def drop_caches():
    subprocess.run(["sync"], check=True)
    with open("/proc/sys/vm/drop_caches", "w") as f:
        f.write("3\n")


def commands(cli, tree, target):
    return {
        "velmora": [cli, "copy", "--yes", tree, target],
        "cp -a": ["cp", "-a", tree, os.path.join(target, "copy")],
        "rsync -a": ["rsync", "-a", tree + "/", os.path.join(target, "copy")],
    }


def copied_root(name, target):
    if name == "velmora":
        entries = [e for e in os.listdir(target) if e.startswith("VLclone(")]
        assert len(entries) == 1, entries
        return os.path.join(target, entries[0])
    return os.path.join(target, "copy")


def timed_run(name, command, target, cold, expected):
    os.makedirs(target)
    settle()
    if cold:
        drop_caches()
    start = time.monotonic()
    result = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    subprocess.run(["sync", "-f", target], check=True)
    elapsed = time.monotonic() - start
    if result.returncode != 0:
        sys.exit(f"{name} failed ({result.returncode}): {result.stderr}")
    summary = tree_summary(copied_root(name, target))
    if summary != expected:
        sys.exit(f"{name} copied {summary}, the tree holds {expected}")
    shutil.rmtree(target)
    subprocess.run(["sync"], check=True)
    return elapsed


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", required=True)
    parser.add_argument("--folder", default="/var/tmp")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--keep", action="store_true")
    args = parser.parse_args()
    if os.geteuid() != 0:
        sys.exit("needs root to drop the caches")
    work = os.path.join(args.folder, "velmora-copy-bench")
    tree = os.path.join(work, "tree")
    if not os.path.isdir(tree):
        print("making the tree ...", flush=True)
        make_tree(tree)
    expected = tree_summary(tree)
    print(f"tree: {expected[0]} files, {expected[1] / (1 << 30):.2f} GiB apparent; load {os.getloadavg()}")
    times = {(name, cold): [] for name in ("velmora", "cp -a", "rsync -a") for cold in (True, False)}
    for round_number in range(args.rounds):
        for cold in (True, False):
            names = list(commands(args.cli, tree, "").keys())
            if round_number % 2:
                names.reverse()  # neither side always runs first
            for name in names:
                target = os.path.join(work, "target")
                if not cold:
                    read_data(tree)
                elapsed = timed_run(name, commands(args.cli, tree, target)[name], target, cold, expected)
                times[(name, cold)].append(elapsed)
                print(f"round {round_number + 1} {'cold' if cold else 'warm'} {name:9s} {elapsed:7.2f} s"
                      f"  (load {os.getloadavg()[0]:.1f})", flush=True)
    print()
    for cold in (True, False):
        velmora = statistics.median(times[("velmora", cold)])
        for reference in ("cp -a", "rsync -a"):
            other = statistics.median(times[(reference, cold)])
            print(f"{'cold' if cold else 'warm'}: velmora {velmora:.2f} s, {reference} {other:.2f} s, "
                  f"ratio velmora/{reference} = {velmora / other:.2f}")
    if not args.keep:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
