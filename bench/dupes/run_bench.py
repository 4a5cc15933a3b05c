#!/usr/bin/env python3
"""Times `velmora-cli dupes` against jdupes (with and without its byte-by-byte
comparison), fdupes and rmlint on one tree, in one invocation, with a warm page
cache and with a cold one (caches dropped before every run, which needs root),
plus `find | xargs cat` as the floor for reading every file once. For each it
reports wall time, CPU time (user + system) and peak memory (largest resident
set), checks that every tool found the same groups (and that velmora found the
tree's true groups), and prints the ratios.

usage: run_bench.py --cli BUILD/bin/velmora-cli [--tree corpus|small|million]
                    [--dir DIR] [--runs N] [--keep] [--only NAME,...] [--cache warm|cold|both]
The trees: corpus (make_corpus.py: 20,000 files, 2.26 GB of mixed sizes), small
(make_small_tree.py: 200,000 files of 1-2 KiB in 64 sizes) and million (the same
with 1,000,000 files). A tree is generated when DIR does not exist yet, and
deleted at the end unless --keep is given. With VELMORA_BENCH_FALLBACK=1 in the
environment velmora is also timed on its path without io_uring.
"""
import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))


TREES = {
    "corpus": ("/tmp/velmora-dupes-corpus", ["make_corpus.py"]),
    "small": ("/tmp/velmora-dupes-small", ["make_small_tree.py"]),
    "million": ("/tmp/velmora-dupes-million", ["make_small_tree.py", "--files", "1000000"]),
}
FLOOR = "find|cat"


def tools(cli, corpus):
    commands = {
        "velmora": [cli, "dupes", "--json", corpus],
        "jdupes": ["jdupes", "-r", "-q", corpus],
        "jdupes-Q": ["jdupes", "-r", "-q", "-Q", corpus],
        "fdupes": ["fdupes", "-r", "-q", corpus],
        # rmlint replaces a named output file; standard output it leaves alone.
        "rmlint": ["rmlint", "-T", "df", "-o", "fdupes", corpus],
        FLOOR: [["find", corpus, "-type", "f", "-print0"], ["xargs", "-0", "cat"]],
    }
    if os.environ.get("VELMORA_BENCH_FALLBACK") == "1":
        commands["velmora-nouring"] = commands["velmora"]
    return commands


def environment(name):
    env = dict(os.environ)
    env.pop("VELMORA_NO_IO_URING", None)
    if name == "velmora-nouring":
        env["VELMORA_NO_IO_URING"] = "1"
    return env


def parse_groups(name, output):
    """The groups as a set of frozensets of absolute paths, empty files left out
    (fdupes counts empty files as duplicates of each other, the others do not)."""
    if name.startswith("velmora"):
        groups = [g["files"] for g in json.loads(output)["groups"]]
    else:
        groups, current = [], []
        for line in output.splitlines() + [""]:
            if line.strip():
                current.append(line)
            elif current:
                groups.append(current)
                current = []
    result = set()
    for group in groups:
        paths = frozenset(os.path.realpath(p) for p in group)
        if all(os.path.getsize(p) == 0 for p in paths):
            continue
        result.add(paths)
    return result


def drop_caches():
    subprocess.run(["sync"], check=True)
    with open("/proc/sys/vm/drop_caches", "w") as control:
        control.write("3\n")


def run_once(name, command, cold, workdir):
    """Wall seconds, CPU seconds, peak resident KiB and standard output of one
    run; a pipeline (a list of commands) sums CPU and takes the largest peak,
    its output is discarded."""
    if cold:
        drop_caches()
    stages = command if isinstance(command[0], list) else [command]
    # A child's peak resident set as the kernel counts it includes what it
    # shared with this (large) Python process before exec, so each stage is
    # started by GNU time, a small process, which writes the true peak.
    peak_files = [tempfile.NamedTemporaryFile(dir=workdir) for _ in stages]
    stages = [["/usr/bin/time", "-f", "%M", "-o", peak_file.name] + stage
              for peak_file, stage in zip(peak_files, stages)]
    output_file = tempfile.TemporaryFile(dir=workdir)
    start = time.perf_counter()
    processes, previous = [], None
    for index, stage in enumerate(stages):
        last = index == len(stages) - 1
        process = subprocess.Popen(stage, stdin=previous, stdout=(subprocess.DEVNULL if len(stages) > 1 else
                                                                  output_file) if last else subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, cwd=workdir, env=environment(name))
        if previous is not None:
            previous.close()
        previous = process.stdout
        processes.append(process)
    cpu, peak = 0.0, 0
    for process in processes:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        cpu += usage.ru_utime + usage.ru_stime
        if process.returncode != 0:
            sys.exit("%s failed with exit code %d" % (name, process.returncode))
    elapsed = time.perf_counter() - start
    for peak_file in peak_files:
        with open(peak_file.name) as written:
            peak = max(peak, int(written.read().split()[-1]))
    output_file.seek(0)
    return elapsed, cpu, peak, output_file.read().decode(errors="surrogateescape")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", required=True)
    parser.add_argument("--tree", choices=sorted(TREES), default="corpus")
    parser.add_argument("--dir", help="where the tree is (or is generated)")
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("--only", help="comma-separated tools to time (default: all)")
    parser.add_argument("--cache", choices=["warm", "cold", "both"], default="both")
    args = parser.parse_args()
    cli = os.path.abspath(args.cli)
    default_dir, generator = TREES[args.tree]
    corpus = os.path.abspath(args.dir or default_dir)
    if not os.path.isdir(corpus):
        subprocess.run([sys.executable, os.path.join(HERE, generator[0]), corpus] + generator[1:], check=True)
    file_count = sum(len(files) for _, _, files in os.walk(corpus))
    every = tools(cli, corpus)
    if args.only:
        every = {name: cmd for name, cmd in every.items() if name in args.only.split(",") or name == "velmora"}
    program = lambda cmd: cmd[0][0] if isinstance(cmd[0], list) else cmd[0]
    commands = {name: cmd for name, cmd in every.items() if shutil.which(program(cmd))}
    missing = set(every) - set(commands)
    if missing:
        print("not installed, skipped: " + ", ".join(sorted(missing)))
    can_drop = os.geteuid() == 0
    modes = [mode for mode in (["warm", "cold"] if can_drop else ["warm"]) if args.cache in (mode, "both")]
    if not can_drop:
        print("not root: cold-cache runs skipped")
    workdir = os.path.join(os.path.dirname(corpus), "velmora-bench-cwd")
    os.makedirs(workdir, exist_ok=True)
    print("tree %s: %d files; load average at the start %.2f %.2f %.2f" % ((corpus, file_count) + os.getloadavg()))

    samples = {mode: {name: [] for name in commands} for mode in modes}  # (wall, cpu, peak KiB)
    groups = {}
    for mode in modes:
        if mode == "warm":  # one untimed pass of each tool fills the cache
            for name, command in commands.items():
                run_once(name, command, False, workdir)
        names = list(commands)
        for run in range(args.runs):
            order = names[run % len(names):] + names[:run % len(names)]  # rotate who goes first
            for name in order:
                wall, cpu, peak, output = run_once(name, commands[name], mode == "cold", workdir)
                samples[mode][name].append((wall, cpu, peak))
                if name != FLOOR and name not in groups:
                    groups[name] = parse_groups(name, output)
    print("load average at the end %.2f %.2f %.2f" % os.getloadavg())

    truth_file = corpus.rstrip("/") + ".groups"
    ok = True
    if os.path.exists(truth_file):
        with open(truth_file) as lines:
            truth = {frozenset(os.path.realpath(p) for p in json.loads(line)) for line in lines}
        same = groups["velmora"] == truth
        ok &= same
        print("velmora vs. the tree's true groups: %s (%d groups)" % ("identical" if same else "DIFFERENT", len(truth)))
    for name in groups:
        if name == "velmora":
            continue
        same = groups[name] == groups["velmora"]
        ok &= same
        print("%s vs. velmora: %s (%d groups)" % (name, "identical groups" if same else "DIFFERENT groups",
                                                 len(groups[name])))

    reference = "jdupes-Q" if "jdupes-Q" in commands else None
    print("\nmedians of %d runs; ratios are velmora's median over the tool's" % args.runs)
    print("%-6s %-16s %9s %9s %10s %11s %9s %9s" % ("cache", "tool", "wall s", "cpu s", "peak MB", "bytes/file",
                                                     "v/wall", "v/cpu"))
    for mode in modes:
        medians = {name: [statistics.median(s[i] for s in values) for i in range(3)]
                   for name, values in samples[mode].items()}
        v_wall, v_cpu, _ = medians["velmora"]
        for name in commands:
            wall, cpu, peak = medians[name]
            print("%-6s %-16s %9.3f %9.3f %10.1f %11.0f %9.2f %9.2f" % (
                mode, name, wall, cpu, peak / 1024, peak * 1024 / max(1, file_count), v_wall / wall, v_cpu / cpu))
        for name in commands:
            print("  %s %-16s runs (wall/cpu/peak MB): %s" % (mode, name, ", ".join(
                "%.3f/%.3f/%.0f" % (w, c, p / 1024) for w, c, p in samples[mode][name])))
        if reference:
            print("  %s velmora / jdupes -Q: wall %.2f, cpu %.2f" % (mode, v_wall / medians[reference][0],
                                                                     v_cpu / medians[reference][1]))
    shutil.rmtree(workdir, ignore_errors=True)
    if not args.keep:
        shutil.rmtree(corpus, ignore_errors=True)
        if os.path.exists(truth_file):
            os.remove(truth_file)
    return 0 if ok else 1


if __name__ == "__main__":
    sys.stdout.reconfigure(line_buffering=True)
    sys.exit(main())
