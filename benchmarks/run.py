#!/usr/bin/env python3
"""Runs every benchmark program and writes one table, as Markdown and as JSON.

A benchmark is named after the operation. Behind a slash may stand "literal" (the plain loop of tests/reference),
"floor" (mapping the result and copying the bytes, or the bare library) or the name of another library on the same work.
Times are medians of the repetitions, real time, in milliseconds.
"""

import argparse
import datetime
import json
import os
import pathlib
import platform
import re
import subprocess
import sys
import tempfile

# What Google Benchmark appends to a name by itself.
SUFFIXES = re.compile(r"/(real_time|process_time|manual_time|iterations:\d+|min_time:[\d.]+|repeats:\d+|threads:\d+)(?=/|$)")
UNITS = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}


def run(program, name_filter, repetitions, min_time):
    """Medians of one program: {name: milliseconds}, and the counters {name: {counter: value}}."""
    command = [str(program), f"--benchmark_filter={name_filter}", f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={min_time}",
               "--benchmark_report_aggregates_only=true", "--benchmark_enable_random_interleaving=true",
               "--benchmark_out_format=json"]
    print("running", program.name, file=sys.stderr)
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "out.json"  # what the library says goes to the standard output
        result = subprocess.run(command + [f"--benchmark_out={out}"], stdout=subprocess.DEVNULL,
                                env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
        if result.returncode != 0:
            sys.exit(f"{program.name} failed with status {result.returncode}")
        text = out.read_text() if out.exists() else ""
    if not text.strip():
        return {}  # nothing matches the filter
    found = {}
    for entry in json.loads(text)["benchmarks"]:
        if entry.get("aggregate_name") == "median":
            found[SUFFIXES.sub("", entry["run_name"])] = {
                "ms": entry["real_time"] * UNITS[entry["time_unit"]],
                "ns_per_pixel": entry.get("ns/pixel"),
                "bytes_per_second": entry.get("bytes_per_second"),
            }
    return found


def group(results):
    """{operation: {"ours": …, "literal": …, "floor": …, "peers": {name: …}}}"""
    operations = {}
    for name, figures in results.items():
        base, _, variant = name.rpartition("/")
        if base in results and variant:
            slot = operations.setdefault(base, {"peers": {}})
            if variant in ("literal", "floor"):
                slot[variant] = figures
            else:
                slot["peers"][variant] = figures
        else:
            operations.setdefault(name, {"peers": {}})["ours"] = figures
    return operations


def cell(figures, ours=None):
    if not figures:
        return ""
    ms = figures["ms"]
    text = f"{ms:.1f}" if ms >= 1 else f"{ms:.4f}"
    return f"{text} ({ours['ms'] / ms:.2f} x)" if ours else text


def markdown(operations, machine):
    lines = ["# Benchmarks", "",
             f"{machine['date']}; {machine['processor']}, {machine['cores']} cores; {machine['compiler']}, -O3.", "",
             "Medians in milliseconds of one run, whole calls with their new result image; pictures of 6000 x 4000 pixels "
             "where the name gives no other size. In brackets: our time as a multiple of that one. *Literal* is the "
             "operation written in plain loops, to which ours is equal to the last bit. *Floor* is the least that must be "
             "done: mapping the result and copying the bytes, or the bare library (Little CMS, libjpeg-turbo, libpng, "
             "libtiff) with the same settings. Other libraries do the same job by their own rules. `./dev bench` makes "
             "this page.", "",
             "| Operation | Ondrel | ns/pixel | Literal | Floor | Other libraries |", "|---|---|---|---|---|---|"]
    for name in sorted(operations):
        slot = operations[name]
        ours = slot.get("ours")
        if not ours:
            continue
        pixel = ours["ns_per_pixel"]
        peers = "; ".join(f"{peer} {cell(figures, ours)}" for peer, figures in sorted(slot["peers"].items()))
        lines.append(f"| {name} | {cell(ours)} | {f'{pixel:.2f}' if pixel else ''} | {cell(slot.get('literal'), ours)} | "
                     f"{cell(slot.get('floor'), ours)} | {peers} |")
    return "\n".join(lines) + "\n"


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.partition(":")[2].strip()
    return platform.machine()


def write(out, operations, machine):
    out.with_suffix(".json").write_text(json.dumps({"machine": machine, "operations": operations}, indent=1) + "\n")
    out.with_suffix(".md").write_text(markdown(operations, machine))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path, help="without the ending")
    parser.add_argument("--filter", default=".")
    parser.add_argument("--repetitions", type=int, default=7)
    parser.add_argument("--min-time", type=float, default=0.05, help="of one repetition, in seconds")
    arguments = parser.parse_args()

    machine = {
        "date": datetime.date.today().isoformat(),
        "processor": processor(),
        "cores": os.cpu_count(),
        "compiler": subprocess.run(["c++", "--version"], stdout=subprocess.PIPE).stdout.decode().splitlines()[0],
    }
    results = {}
    for program in sorted(arguments.build.glob("benchmarks/**/ondrel_bench_*")):
        if os.access(program, os.X_OK) and program.is_file():
            results.update(run(program, arguments.filter, arguments.repetitions, arguments.min_time))
            write(arguments.out, group(results), machine)  # so that a run cut short leaves what it has


if __name__ == "__main__":
    main()
