"""The workflows in .github/workflows run what is there: scripts of the repository, presets of CMake, and
the few commands of the runner that are listed here.

check_workflows.py

The steps need runners. Here each workflow is read as they read it, and each command is held to the
repository. That a script works is shown by scripts/check, which must run it too, itself or through the
tests or another script.
"""

import itertools
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

import yaml

ROOT = pathlib.Path(__file__).resolve().parents[2]
RUNNERS = {"ubuntu-24.04", "macos-15", "macos-15-intel"}
ACTIONS = {"actions/checkout@v4", "actions/upload-artifact@v4", "actions/download-artifact@v4"}
# Before a checkout there is no script to run; a Mac's packages and a release are the runner's matter.
DOCUMENTED = {
    "apt-get update && apt-get install --yes git",
    "apt-get update && apt-get install --yes git python3-venv",
    "apt-get update && apt-get install --yes libtinyexr-dev",
    "brew install cmake googletest jpeg-turbo libtiff ninja openexr tinyobjloader",
    'git config --global --add safe.directory "$GITHUB_WORKSPACE"',
    'gh release create "$GITHUB_REF_NAME" --repo "$GITHUB_REPOSITORY" --verify-tag archives/*',
}
# Takes too long for scripts/check.
BY_HAND = {"tests/package/check_archives"}
# The runner's values, for steps that name them.
VALUES = {"github.run_number": "7", "github.token": "token"}

mistakes = []


def check(holds, message):
    if not holds:
        mistakes.append(message)


def settings_of(job):
    """The values of each run of a job's matrix."""
    matrix = job.get("strategy", {}).get("matrix", {})
    for values in itertools.product(*matrix.values()):
        yield {f"matrix.{name}": value for name, value in zip(matrix, values)}


def filled(text, settings):
    """A text with its expressions replaced; one that nobody sets raises KeyError."""
    return re.sub(r"\$\{\{ *(.*?) *\}\}", lambda match: {**VALUES, **settings}[match[1]], text)


def presets():
    """The names of the presets by the command that takes them."""
    document = json.loads((ROOT / "CMakePresets.json").read_text())
    return {
        kind: {preset["name"] for preset in document[key] if not preset.get("hidden")}
        for kind, key in [
            ("cmake", "configurePresets"),
            ("build", "buildPresets"),
            ("ctest", "testPresets"),
        ]
    }


def check_command(place, words):
    """A command that is not of the runner: a script, or a call of CMake with a preset."""
    if words[0] in ("cmake", "ctest"):
        kind = "build" if "--build" in words else words[0]
        preset = words[words.index("--preset") + 1]
        check(preset in presets()[kind], f"{place}: there is no {kind} preset {preset}")
        return
    script = ROOT / words[0]
    if not os.access(script, os.X_OK):
        mistakes.append(f"{place}: {words[0]} cannot be run")
        return
    if script.read_text().startswith("#!/usr/bin/env bash"):
        check(subprocess.run(["bash", "-n", script]).returncode == 0, f"{place}: {words[0]}")
    runners = ("scripts/check", "scripts/build-macos", "tests/CMakeLists.txt")
    known = "".join((ROOT / file).read_text() for file in runners)
    if words[0] not in BY_HAND:
        check(re.search(rf"{re.escape(words[0])}\b", known), f"{place}: nothing here runs {words[0]}")
    if words[0] == "scripts/test":
        for preset in words[1:]:
            check(preset in presets()["ctest"], f"{place}: there is no preset {preset}")


def check_job(place, job, jobs):
    for settings in settings_of(job):
        runner = filled(job["runs-on"], settings)
        check(runner in RUNNERS, f"{place}: runs on {runner}")
        check(job.get("container", "debian:12") == "debian:12", f"{place}: the container")
        checked_out = False
        for step in job["steps"]:
            check(len({"run", "uses"} & set(step)) == 1, f"{place}: a step either runs or uses")
            if "uses" in step:
                check(step["uses"] in ACTIONS, f"{place}: uses {step['uses']}")
                checked_out |= step["uses"].startswith("actions/checkout@")
            elif step["run"] not in DOCUMENTED:
                check(checked_out, f"{place}: {step['run']} comes before the checkout")
                check_command(place, shlex.split(filled(step["run"], settings)))
    needed = job.get("needs", [])
    for other in [needed] if isinstance(needed, str) else needed:
        check(other in jobs, f"{place}: needs {other}")


def check_tags():
    """A release of a tag that is not the version's ends before anything is built."""
    with tempfile.TemporaryDirectory() as folder:
        for command in (["git", "clone", "-q", ROOT, folder], ["git", "-C", folder, "tag", "v0.1"]):
            subprocess.run(command, check=True)
        refusal = subprocess.run(
            [f"{folder}/scripts/package", "v0.1"], capture_output=True, text=True, check=False
        )
    check(refusal.returncode == 1 and "v0.1" in refusal.stderr, f"v0.1: {refusal.stderr}")


def main():
    files = sorted((ROOT / ".github/workflows").glob("*.yml"))
    check([file.stem for file in files] == ["linux", "macos", "release"], "the workflows")
    for file in files:
        workflow = yaml.safe_load(file.read_text())
        check(True in workflow, f"{file.name}: when does it run?")  # YAML reads "on" as true
        check("contents" in workflow["permissions"], f"{file.name}: says what it may do")
        for name, job in workflow["jobs"].items():
            check_job(f"{file.name}, {name}", job, workflow["jobs"])
    if (ROOT / ".git").exists():
        check_tags()
    print("\n".join(mistakes), file=sys.stderr)
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
