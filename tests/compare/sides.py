"""The two sides of a comparison: the library, in a process of its own, and the model."""

import contextlib
import importlib
import os
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
import traceback
from typing import NamedTuple

from cases import BLOCK

MEMORY = 3 << 30  # for the model


class Result(NamedTuple):
    """What came of a call."""

    status: object  # a number, or "out_of_range" for what is thrown
    text: object  # in the memory block; None when it is untouched
    printed: bytes


# What a header claims may take the library no time, and the model, which makes all of it, too much.
TOO_LARGE = "the case is too large for the model"


class TimeLimit(Exception):
    """A side took too long."""


class Broken(Exception):
    """The library's process has ended."""


class Library:
    """The library's side, Server.cpp. A process that has ended is started again."""

    def __init__(self, build):
        self.command = [build / "tests" / "compare_server", build / "libQuillon.so"]
        self.process = None

    def run(self, folder, case):
        """The results of the calls; a text says why there are no more."""
        if self.process is None:
            self.errors = tempfile.TemporaryFile()
            pipe = subprocess.PIPE
            environment = dict(os.environ, ASAN_OPTIONS="detect_leaks=0")
            self.process = subprocess.Popen(self.command, stdin=pipe, stdout=pipe,
                                            stderr=self.errors, env=environment)
        results = []
        try:
            self.ask("folder", [os.fsencode(folder)])
            for name, arguments in case.calls:
                results.append(self.ask(name, arguments))
        except Broken:
            results.append(self.end())
        except TimeLimit:
            results.append("the library took too long; " + self.end())
        return results

    def ask(self, name, arguments):
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.write((" ".join([name, *map(word, arguments)]) + "\n").encode())
            self.process.stdin.flush()
        reply = self.process.stdout.readline().decode().split()
        if len(reply) != 3:
            raise Broken
        status, text, printed = reply
        if status != "out_of_range":
            status = struct.unpack(">f", bytes.fromhex(status))[0]
        return Result(status, unhex(text), unhex(printed) or b"")

    def end(self):
        """Ends the process and says how it ended."""
        if self.process is None:
            return ""
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.close()
        with contextlib.suppress(subprocess.TimeoutExpired):
            self.process.wait(1)  # a sanitizer may still be writing
        self.process.kill()
        status = self.process.wait()
        self.process = None
        self.errors.seek(0)
        said = self.errors.read(4000).decode(errors="replace")
        return f"the library's process ended with {status}\n{said}"


def word(argument):
    """An argument in a request to the library's process."""
    if argument is None:
        return "-"
    if argument is BLOCK:
        return "*"
    return "=" + argument.hex() if isinstance(argument, bytes) else f"#{argument!r}"


def unhex(text):
    """A text of a reply; a word such as "overrun" stays, to be seen as different."""
    return None if text == "-" else bytes.fromhex(text[1:]) if text[0] == "=" else text


class Model:
    """The model's side, in this process."""

    def __init__(self, folder):
        sys.path.insert(0, str(folder))
        self.world = importlib.import_module("world")
        names = "exports services mesh tiff targa psd bmp jpeg exr"
        self.modules = [importlib.import_module(name) for name in names.split()]
        self.refused = self.modules[-1].REFUSED  # stands for any negative status
        self.anything = self.modules[-1].ANYTHING  # stands for any status

    def run(self, folder, case):
        """The results of the calls; a text says why there are no more."""
        os.chdir(folder)
        self.modules[0].reset()
        results = []
        try:
            resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, resource.RLIM_INFINITY))
            for name, arguments in case.calls:
                results.append(self.call(name, arguments))
        except (TimeLimit, MemoryError):
            results.append(TOO_LARGE)
        except Exception:
            results.append("the model raised\n" + traceback.format_exc(limit=-3))
        finally:  # the library's process would inherit the limit
            resource.setrlimit(resource.RLIMIT_DATA, (resource.RLIM_INFINITY,) * 2)
        return results

    def call(self, name, arguments):
        block = self.world.Block()
        arguments = [block if argument is BLOCK else argument for argument in arguments]
        module = next(module for module in self.modules if hasattr(module, name))
        if module is self.modules[0]:
            arguments = [*arguments, None, None][:3]
        self.world.stdout.clear()
        try:
            status = getattr(module, name)(*arguments)
        except self.world.Refused as refusal:
            status = refusal.status
        if isinstance(status, bytes):
            block.copy(status)
            status = 0.0
        return Result(status, block.text, bytes(self.world.stdout))


def furnish(folder, case):
    """Makes a case's files and folders in a fresh folder, as far as they can be made."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for kind, name, content in case.steps:
        path = os.fsencode(folder) + b"/" + name
        with contextlib.suppress(OSError):
            if kind == "folder":
                os.mkdir(path)
            elif kind == "symlink":
                os.symlink(content, path)
            elif kind == "link":
                os.link(os.fsencode(folder) + b"/" + content, path)
            else:
                with open(path, "wb") as file:
                    file.write(getattr(content, "data", content))


def contents(folder):
    """All that is in a folder: by name, the bytes of a file, the target of a link, or None."""
    found = {}
    base = os.fsencode(folder)
    for parent, folders, files in os.walk(base):
        for name in folders + files:
            path = os.path.join(parent, name)
            content = None
            if os.path.islink(path):
                content = os.readlink(path)
            elif not os.path.isdir(path):
                with open(path, "rb") as file:
                    content = file.read()
            found[path[len(base) + 1 :]] = content
    return found
