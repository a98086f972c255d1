"""Opens the images that a documented command has written with two other programs."""

import pathlib
import re
import subprocess

EXTENSIONS = (".bmp", ".jpg", ".psd", ".tga", ".tif")
READERS = (  # each decodes the pixels and prints the size
    ["convert", "-quiet", "{}[0]", "-format", "%w x %h", "info:"],
    ["oiiotool", "--info", "--stats", "{}"],
)


def images(folder):
    """The images in a folder and below it, with their bytes."""
    files = pathlib.Path(folder).rglob("*")
    return {file: file.read_bytes() for file in files if file.suffix in EXTENSIONS}


def size(reader, file):
    ran = subprocess.run([word.format(file) for word in reader], text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    found = re.search(r"(\d+) x +(\d+)", ran.stdout)
    return found.groups() if found and ran.returncode == 0 else ran.stdout


def complaints(folder, before):
    """What is wrong with the images that are not as `before`, a result of images()."""
    for file, content in sorted(images(folder).items()):
        if before.get(file) == content:
            continue
        sizes = [size(reader, file) for reader in READERS]
        if not isinstance(sizes[0], tuple) or sizes[0] != sizes[1]:
            yield f"{file.name}: ImageMagick reads {sizes[0]}, OpenImageIO {sizes[1]}"
