#!/usr/bin/env python3
"""Compares docs/exports.md with what quillon reference prints, and runs every example in it.

  reference.py REPOSITORY QUILLON

Each block that starts with "$ " is a command and what it prints. It is run by a shell in a folder
that docs/examples/make has filled, a fresh copy for each.
"""
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile

repository, quillon = sys.argv[1:]
environment = dict(os.environ, PATH=os.path.dirname(quillon) + os.pathsep + os.environ["PATH"])
failures = 0


def compare(what, want, have):
    global failures
    if want == have:
        return
    failures += 1
    print(f"{what} differs:")
    print("".join(difflib.unified_diff(want.splitlines(True), have.splitlines(True), "want", "have")))


def output_of(command, folder):
    ended = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return ended.stdout


with open(os.path.join(repository, "docs", "exports.md")) as file:
    page = file.read()
compare("docs/exports.md", page, output_of("quillon reference", repository))

with tempfile.TemporaryDirectory() as scratch:
    pattern = os.path.join(scratch, "pattern")
    subprocess.run([os.path.join(repository, "docs/examples/make"), pattern, quillon], check=True)
    examples = re.findall(r"^```console\n\$ (.*)\n((?:(?!```).*\n)*)```$", page, re.MULTILINE)
    for number, (command, output) in enumerate(examples):
        folder = os.path.join(scratch, str(number))
        shutil.copytree(pattern, folder)
        compare(command, output, output_of(command, folder))

if len(examples) != 34:
    failures += 1
    print(f"{len(examples)} examples, not one for each of the 34 exports")
sys.exit(failures > 0)
