"""Plants misreadings in the model, one at a time: the comparison must notice each."""

import shutil
import tempfile
from pathlib import Path

import compare

# The module whose cases run, the model's file, the text that is replaced, once, and its successor.
MISREADINGS = [
    ("tiff", "tiff.py", "value <= 2, -262.0", "value <= 1, -262.0"),
    ("tiff", "tiff.py", "1 if channels == 1 else 2", "0 if channels == 1 else 2"),
    ("tiff", "tiff.py", "(q + np.float32(0.5))", "np.rint(q)"),
    ("tiff", "tiff.py", "{1: (1, 2), 2: (0, 2), 3: (0, 1)}", "{1: (0, 1), 2: (0, 2), 3: (1, 2)}"),
    ("tiff", "tiff.py", "offset < info.stripByteCount",
     "offset < info.stripOffset + info.stripByteCount"),
    ("tiff", "tiff.py", "14 if tag == 256 else 18", "18 if tag == 256 else 14"),
    ("tiff", "targa.py", "= blue, green, red", "= red, green, blue"),
    ("tiff", "exports.py", "0 < value < 4", "1 <= value < 4"),
    ("psd", "psd.py", "wrap(level - 1)", "wrap(level)"),
    ("psd", "psd.py", "b * 0.333 + 0.5", "b * 0.334 + 0.5"),
    ("psd", "psd.py", "2: (blue, red, green), 3: (green, blue, red)",
     "2: (green, blue, red), 3: (blue, red, green)"),
    ("psd", "psd.py", "[merged[start] for", "[img[start] for"),
    ("psd", "psd.py", "range(2 * W, n - W, W)", "range(2 * W, n, W)"),
    ("bmp", "bmp.py", "p < len(data) - 3", "p <= len(data) - 3"),
    ("bmp", "bmp.py", "bmp.stride + xOffset", "bmp.stride + 3 * xOffset"),
    ("bmp", "bmp.py", "background = data[", "background = painted["),
    ("mesh", "mesh.py", "np.where(x < 0, x - np.float32(1), x)", "np.where(x < 0, np.floor(x), x)"),
    ("mesh", "mesh.py", "second[:-15]", "second[:-16]"),
    ("mesh", "mesh.py", "if i % 32 == 31:", "if i % 32 == 31 and i + 1 < len(colours):"),
    ("mesh", "mesh.py", 'piece.split(b"-", 1)', 'piece.rsplit(b"-", 1)'),
    ("service", "services.py", '[0] if b"." in path else path', '[0] if b"." in name else path'),
    ("service", "exports.py", "0 <= value <= last", "0 <= value < last"),
    ("encoder", "jpeg.py", "(8 - len(bits) % 8)", "(-len(bits) % 8)"),
    ("encoder", "jpeg.py", "min((product + 50) // 100", "min(product // 100"),
    ("encoder", "exr.py", "max([-65535.0, *numbers])", "max(numbers, default=0.0)"),
]  # fmt: skip


def failures(options, model):
    """The numbers of the cases that disagree, as they come."""
    with compare.outcomes(options, model) as found:
        yield from (outcome.number for outcome in found if outcome.report)


def run(options):
    right_model = compare.TOP / "tests" / "model"
    known = set(failures(options, right_model))
    missed = 0
    with tempfile.TemporaryDirectory() as folder:
        options.keep = Path(folder) / "kept"
        model = Path(folder) / "model"
        for module, name, right, wrong in MISREADINGS:
            shutil.copytree(right_model, model, dirs_exist_ok=True)
            text = (model / name).read_text()
            if text.count(right) != 1:
                raise SystemExit(f"{name} holds {right!r} {text.count(right)} times")
            (model / name).write_text(text.replace(right, wrong))
            options.only = module
            caught = next((n for n in failures(options, model) if n not in known), None)
            missed += caught is None
            result = "NOT CAUGHT" if caught is None else f"caught by case {options.seed}:{caught}"
            print(f"{name}: {wrong!r}: {result}", flush=True)
    print(f"{len(MISREADINGS) - missed} caught, {missed} missed")
    return 1 if missed else 0
