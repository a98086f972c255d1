"""Makes the same calls of the library and of the model, tests/model, and compares the results.

Compared are the status of each call by its bits, the text in the host's memory block, what was
printed, and all that is in the folder afterwards.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import itertools
import math
import multiprocessing.util
import os
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
from pathlib import Path
from typing import NamedTuple

import bmp_cases
import encoder_cases
import mesh_cases
import psd_cases
import service_cases
import tiff_cases
from cases import Draw, apply, bend, sweep
from sides import TOO_LARGE, Library, Model, Result, TimeLimit, contents, furnish

TOP = Path(__file__).resolve().parents[2]
MODULES = {"service": service_cases, "mesh": mesh_cases, "tiff": tiff_cases, "psd": psd_cases,
           "bmp": bmp_cases, "encoder": encoder_cases}
EXPORTS = {name for name in (TOP / "src/export/exports.txt").read_text().split()
           if not name.startswith("_Z")}
SHARES = [2, 4, 4, 4, 3, 2]  # of the modules in the cases at random
SIDES = [4, 9, 16, 40, 110, 200], [30, 40, 20, 7, 2, 1]  # of the largest image, and how often
SECONDS = 20  # for a side of a case

# The status of a call that did its work, where it is not 0.
SUCCESS = {"Version": 48, "GetPublicFolder": 1, "ClearFolder": 1}
MEASURES = {"getUVTile", "getUVGroups", "GetFaceIDsVemo", "OpenEXR", "getScale", "IsDirectory"}


class Cases:
    """The cases by number: first the edge cases, then in turn three of a sweep and two at random.

    A sweep bends one field of a small good file, or cuts it short, at every place in turn. Its
    members are taken in an order that spreads any number of cases over all of them.
    """

    def __init__(self, seed):
        self.seed = seed
        self.edges = [(name, case) for name in MODULES for case in MODULES[name].edges(Draw(name))]
        self.sweeps = [(name, recipe, bent) for name in MODULES
                       for recipe, _ in MODULES[name].RECIPES for bent in sweep(small(recipe))]
        count = len(self.sweeps)
        self.stride = next(n for n in itertools.count(count * 5 // 8) if math.gcd(n, count) == 1)

    def __getitem__(self, number):
        """The module's name and the case."""
        if number < len(self.edges):
            return self.edges[number]
        turn, kind = divmod(number - len(self.edges), 5)
        swept = 3 * turn + kind
        if kind < 3 and swept < len(self.sweeps):
            name, recipe, bent = self.sweeps[swept * self.stride % len(self.sweeps)]
            case = small(recipe)
            apply(case, *bent)
            return name, case
        rng = Draw(f"{self.seed}:{number}")
        name = rng.choices(list(MODULES), SHARES)[0]
        recipes, weights = zip(*MODULES[name].RECIPES)
        rng.most = rng.choices(*SIDES)[0]
        case = rng.choices(recipes, weights)[0](rng)
        if rng.random() < 0.3 and case.layouts():
            bend(rng, case)
        return name, case


def small(recipe):
    """A small good case, the same at each call."""
    rng = Draw(f"{recipe.__module__}.{recipe.__name__}")
    rng.most, rng.sound = 3, True
    return recipe(rng)


def bits(status):
    """A status as the host gets it; any NaN is the same."""
    if isinstance(status, str) or math.isnan(status):
        return str(status)
    try:
        return struct.pack(">f", status).hex()
    except OverflowError:
        return struct.pack(">f", math.copysign(math.inf, status)).hex()


def call_difference(library, model, refused, anything):
    """In words, in what two results of a call differ."""
    agree = bits(library.status) == bits(model.status)
    if model.status == refused and not isinstance(library.status, str):
        agree = library.status < 0
    if not agree and model.status != anything:
        shown = [f"{side.status} ({bits(side.status)})" for side in (library, model)]
        yield f"status: library {shown[0]}, model {shown[1]}"
    if library.text != model.text:
        yield f"memory block: library {library.text}, model {model.text}"
    if library.printed != model.printed:
        yield f"printed: library {library.printed}, model {model.printed}"


def field_at(tool, path, at):
    """In brackets, what the byte at an offset belongs to; nothing without the tool."""
    if not tool.exists():
        return ""
    command = [tool, "inspect", path, "--at", str(at)]
    lines = subprocess.run(command, capture_output=True, text=True, check=False).stdout.splitlines()
    return f" ({lines[1].strip()})" if len(lines) > 1 else ""


def folder_difference(folders, tool):
    """In words, where two folders differ first."""
    library, model = map(contents, folders)
    for path in sorted(library.keys() | model.keys()):
        name = os.fsdecode(path)
        if path not in library or path not in model:
            yield f"{name}: only the {'library' if path in library else 'model'} has it"
            return
        left, right = library[path], model[path]
        if (left is None) != (right is None):
            yield f"{name}: a folder for the {'library' if left is None else 'model'} only"
            return
        if left != right:
            pairs = enumerate(zip(left, right))
            at = next((i for i, (a, b) in pairs if a != b), min(len(left), len(right)))
            shown = [data[at : at + 8].hex(" ") or "its end" for data in (left, right)]
            field = field_at(tool, folders[1] / name, at)
            yield (f"{name}: offset {at}{field}: library {shown[0]}, model {shown[1]};"
                   f" {len(left)} and {len(right)} bytes")
            return


def shown_call(name, arguments):
    return f"{name}({', '.join(map(repr, arguments))})"


def differences(case, results, folders, stand_ins, tool):
    """In words, where the sides differ: the first call, and the first place in the folders."""
    for (name, arguments), library, model in itertools.zip_longest(case.calls, *results):
        ends = [side for side in (library, model) if not isinstance(side, Result)]
        found = [str(end) for end in ends] or list(call_difference(library, model, *stand_ins))
        if found:
            yield "at " + shown_call(name, arguments)
            yield from found
            break
    yield from folder_difference(folders, tool)


class Outcome(NamedTuple):
    """What came of a case; the report is empty where library and model agree."""

    number: int
    module: str
    statuses: list  # (name, the library's status) of each call
    report: list
    too_large: bool  # for the model: nothing was compared


class Worker:
    """Runs cases by number in folders of its own."""

    def __init__(self, options, model):
        self.only = options.only
        self.keep = options.keep
        self.cases = Cases(options.seed)
        place = "/dev/shm" if os.path.isdir("/dev/shm") else None
        self.root = Path(tempfile.mkdtemp(prefix="compare-", dir=place))
        self.folders = [self.root / "library", self.root / "model"]
        build = TOP / "build" / options.preset
        self.tool = build / "host" / "quillon"
        self.sides = [Library(build), Model(model)]
        signal.signal(signal.SIGALRM, self.too_long)

    @staticmethod
    def too_long(*_):
        raise TimeLimit

    def run(self, number):
        """The case's outcome; None where its module is left out."""
        module, case = self.cases[number]
        if self.only not in (None, module):
            return None
        results = []
        for side, folder in zip(self.sides, self.folders):
            furnish(folder, case)
            signal.alarm(SECONDS)
            results.append(side.run(folder, case))
            signal.alarm(0)
        model = self.sides[1]
        too_large = results[1][-1:] == [TOO_LARGE] and len(results[0]) >= len(results[1])
        report = []
        if not too_large:
            stand_ins = model.refused, model.anything
            report = list(differences(case, results, self.folders, stand_ins, self.tool))
        if report:
            report = self.head(number, module, case) + report
        statuses = [(name, result.status) for (name, _), result in zip(case.calls, results[0])
                    if isinstance(result, Result)]
        return Outcome(number, module, statuses, report, too_large)

    def head(self, number, module, case):
        """The first lines of a report; keeps the folders and what was in them before."""
        kept = self.keep / f"{self.cases.seed}-{number}"
        shutil.rmtree(kept, ignore_errors=True)
        furnish(kept / "inputs", case)
        for folder in self.folders:
            shutil.copytree(folder, kept / folder.name, symlinks=True)
        calls = [shown_call(*call) for call in case.calls]
        return [f"case {self.cases.seed}:{number} ({module}), kept in {kept}", *calls]

    def close(self):
        os.chdir("/")
        self.sides[0].end()
        shutil.rmtree(self.root, ignore_errors=True)


worker = None


def start_worker(options, model):
    global worker
    worker = Worker(options, model)
    multiprocessing.util.Finalize(worker, worker.close, exitpriority=1)


def run_case(number):
    return worker.run(number)


@contextlib.contextmanager
def outcomes(options, model):
    """The outcomes of cases, in their order, from two processes."""
    context = multiprocessing.get_context("spawn")
    pool = concurrent.futures.ProcessPoolExecutor(2, context, start_worker, (options, model))
    try:
        yield filter(None, pool.map(run_case, options.numbers, chunksize=20))
    finally:
        pool.shutdown(cancel_futures=True)


def succeeded(name, status):
    if isinstance(status, str) or math.isnan(status):
        return False
    if name in ("getUVs", "getUVsMask"):
        return 0 <= status < 1501
    return status >= 0 if name in MEASURES else status == SUCCESS.get(name, 0)


def run(options):
    calls, good, modules = collections.Counter(), collections.Counter(), collections.Counter()
    failed = too_large = 0
    with outcomes(options, TOP / "tests" / "model") as found:
        for outcome in found:
            modules[outcome.module] += 1
            for name, status in outcome.statuses:
                calls[name] += 1
                good[name] += succeeded(name, status)
            too_large += outcome.too_large
            if outcome.report:
                failed += 1
                print("\n    ".join(outcome.report), flush=True)
    print(f"{'':24}{'calls':>8}{'succeeded':>11}")
    for name in sorted(calls, key=str.lower):
        print(f"{name:24}{calls[name]:8}{good[name]:11}{good[name] / calls[name]:8.0%}")
    print("cases: " + ", ".join(f"{name} {count}" for name, count in modules.items()))
    # Calls that are refused prove little. Few cases say nothing about that.
    poor = [name for name in calls if calls[name] > 90 and good[name] * 3 < calls[name]]
    if poor:
        print("fewer than a third of the calls succeeded: " + ", ".join(poor))
    missing = EXPORTS - calls.keys() if options.only is None and modules.total() > 10000 else ()
    if missing:
        print("exports without a case: " + ", ".join(sorted(missing)))
    if too_large:
        print(f"too large for the model, so nothing was compared: {too_large}")
    print(f"{modules.total() - failed - too_large} passed, {failed} failed, {too_large} skipped")
    return 1 if failed or poor or missing or too_large * 1000 > modules.total() else 0


def main():
    parser = argparse.ArgumentParser(prog="scripts/compare", description=__doc__)
    add = parser.add_argument
    add("--cases", type=int, default=20000, metavar="N", help="how many cases (20000)")
    add("--seed", type=int, default=1, metavar="S", help="where random cases come from (1)")
    add("--preset", default="release", help="the build in build/PRESET (release)")
    add("--only", choices=MODULES, help="of all cases, run those of one module")
    add("--keep", type=Path, metavar="FOLDER", help="for what disagrees (build/compare)")
    add("--case", metavar="S:N", help="run one case, named as in the report of a disagreement")
    add("--self-test", action="store_true", help="plant errors in the model: each must be caught")
    options = parser.parse_args()
    options.keep = (options.keep or TOP / "build" / "compare").resolve()
    server = TOP / "build" / options.preset / "tests" / "compare_server"
    if not server.exists():
        parser.error(f"{server} is missing: build the preset {options.preset} with its tests first")
    options.numbers = range(options.cases)
    if options.case:
        options.seed, number = map(int, options.case.split(":"))
        options.numbers = [number]
    if options.self_test:
        import self_test

        return self_test.run(options)
    return run(options)


if __name__ == "__main__":
    sys.exit(main())
