"""What a case is made of: calls, and files whose header fields have names; ways to bend a file."""

import random

BLOCK = "block"  # as an argument: the host's memory block
NAN, INF = float("nan"), float("inf")


class Draw(random.Random):
    """The random numbers of a case. With `sound` they make a small good case without oddities."""

    most = 9  # the longest side of an image, and about as many faces as a mesh has
    sound = False
    sheet = False  # makes images that are background but for a few painted stretches

    def odd(self, chance):
        """Whether something out of the ordinary is wanted."""
        return not self.sound and self.random() < chance

    def side(self):
        """A side of an image, now and then 0."""
        return 0 if self.odd(0.07) else self.randint(1, self.most)

    def sides(self):
        """The sides of an image that merges read in several parts."""
        sides = (300, 300) if self.random() < 0.1 else (self.randint(500, 5000), self.randint(1, 5))
        return self.sample(sides, 2)

    def pixels(self, palette, count):
        """The pixels of an image. The palette's first is the background."""
        if not self.sheet:
            return self.choices(palette, k=count)
        background, *colours = dict.fromkeys(palette)
        pixels = [background] * count
        for _ in range(self.randint(0, 4)):
            start, length = self.randrange(count), self.choice([1, 90, 1000, 5000])
            length = min(self.randint(1, length), count - start)
            holes = [background] * self.choice([0, 0, 1, 20])
            pixels[start : start + length] = self.choices(colours + holes, k=length)
        return pixels


class Layout:
    """A file with named header fields. `order` is that of its bytes, "little" or "big"."""

    def __init__(self, data=b"", order="little"):
        self.data = bytearray(data)
        self.order = order
        self.fields = {}

    def put(self, name, size, value):
        """Appends a field."""
        self.fields[name] = (len(self.data), size)
        return self.raw((value % 256**size).to_bytes(size, self.order))

    def raw(self, data):
        self.data += data
        return self

    def get(self, name):
        at, size = self.fields[name]
        return int.from_bytes(self.data[at : at + size], self.order)

    def set(self, name, value):
        at, size = self.fields[name]
        self.data[at : at + size] = (value % 256**size).to_bytes(size, self.order)
        return self

    def telling(self, name):
        """The values for a field that are near the limits of its readers."""
        size = self.fields[name][1]
        old, length, top = self.get(name), len(self.data), 256**size
        if name.endswith("type"):  # of a TIFF's entry, which is not read
            return [0, top - 1]
        values = [0, 1, 2, 3, old - 1, old + 1, top // 2 - 1, top // 2, top - 1]
        if size > 1:
            values += [length - 1, length, length + 1]
        return sorted({value % top for value in values} - {old})


class Case:
    """Files and folders, made in this order in a fresh folder, and the calls made there."""

    def __init__(self, *files):
        self.steps = [("file", *file) for file in files]  # (kind, path, content)
        self.calls = []  # (name, arguments)

    def file(self, path, content=b"", kind="file"):
        """Adds a file, or a "link" or "symlink" whose content is the path of another."""
        self.steps.append((kind, path, content))
        return path

    def folder(self, path):
        return self.file(path, kind="folder")

    def call(self, name, *arguments):
        self.calls.append((name, arguments))
        return self

    def layouts(self):
        return [content for _, _, content in self.steps if isinstance(content, Layout)]


def target(rng, case, source, name):
    """A path for an output: mostly a new file, else one of the things that can be in its place."""
    kind = rng.randint(1, 9) if rng.odd(0.25) else 0
    if kind in (1, 2):
        return case.file(name, rng.randbytes(rng.choice([0, 5, 3000])))
    if kind == 3:
        return source
    if kind in (4, 5):
        return case.file(name, source, "link" if kind == 4 else "symlink")
    if kind == 6:
        return case.folder(name)
    if kind == 7:
        return b"missing/" + name
    if kind == 8:
        return case.folder(b"some.where") + b"/" + name
    return b"n" * rng.choice([200, 251, 252]) + name[-4:] if kind == 9 else name


def source(rng, case, name, content):
    """A path for an input: mostly the file, else nothing, a folder, or the file by a link."""
    kind = rng.randint(1, 5) if rng.odd(0.1) else 0
    if kind == 1:
        return b"missing" + name
    if kind == 2:
        return case.folder(name)
    if kind == 3:
        return case.file(case.folder(b"deep.er") + b"/" + name, content)
    case.file(name, content)
    if kind == 0:
        return name
    return case.file(b"other-" + name, name, "link" if kind == 4 else "symlink")


def unreadable(*calls):
    """Each call, given without its first argument, with paths of what is no good file."""
    for name, *rest in calls:
        for path in (b"", b"missing", b".", b"x/" * 300, b"empty"):
            yield Case((b"empty", b"")).call(name, path, *rest)


def nulls(*calls):
    """Each call of an export with one of its pointers null."""
    for name, value in calls:
        yield Case((b"a", b"")).call(name, None, value, b"a")
        yield Case((b"a", b"")).call(name, b"a", value, None)


def bend(rng, case):
    """Damages one of the files of a case: a field, its end, or a few bytes."""
    layout = rng.choice(case.layouts())
    kind = rng.choices(["field", "cut", "longer", "bytes"], [6, 2, 1, 1])[0]
    if kind == "field" and layout.fields:
        for _ in range(rng.choice([1, 1, 2])):
            name = rng.choice(list(layout.fields))
            layout.set(name, rng.choice(layout.telling(name)))
    elif kind == "cut":
        del layout.data[rng.randrange(len(layout.data) + 1) :]
    elif kind == "longer" or not layout.data:
        layout.raw(rng.randbytes(rng.choice([1, 2, 16, 100])))
    else:
        for _ in range(3):
            layout.data[rng.randrange(min(len(layout.data), 300))] = rng.randrange(256)


def sweep(case):
    """All ways to bend one thing of a case: (file, field, value) or (file, None, length)."""
    for index, layout in enumerate(case.layouts()):
        for name in layout.fields:
            for value in layout.telling(name):
                yield index, name, value
        length = len(layout.data)
        near_an_end = [*range(0, 64, 2), *range(length - 40, length, 4)]
        for cut in range(length) if length < 600 else near_an_end:
            yield index, None, cut


def apply(case, index, name, value):
    """Bends a case in one of the ways of sweep()."""
    layout = case.layouts()[index]
    if name is None:
        del layout.data[value:]
    else:
        layout.set(name, value)
