#!/usr/bin/env python3
"""Draws frames FIRST to LAST of a film, each as a task of its own, on the processors of this machine or on a cluster.

The film is a Python file with a function draw(screen, number, folder), which draws a frame from nothing: frames are drawn in any
order, on any machine. `folder` has the other files named. DIR gets a PNG file for each picture, named by its content, and list.txt,
which says which is which frame; frames that are there already are not drawn again."""
import argparse
import os
import pathlib

import farm


def draw(source, files, film, number, width, height):
    """On a worker: a frame as a PNG file's bytes. Everything that it depends on comes along."""
    import importlib.util
    import os
    import shutil
    import sys
    import tempfile

    import ninefold as nf

    folder = os.path.join(tempfile.gettempdir(), f"ninefold-film-{os.getuid()}-{source}")
    if not os.path.isdir(folder):
        made = tempfile.mkdtemp(prefix=os.path.basename(folder), dir=tempfile.gettempdir())
        for name, content in files.items():
            with open(os.path.join(made, name), "wb") as file:
                file.write(content)
        try:
            os.rename(made, folder)
        except OSError:  # another worker was faster
            shutil.rmtree(made)
    module = sys.modules.get(f"film_{source}")
    if module is None:
        described = importlib.util.spec_from_file_location(f"film_{source}", os.path.join(folder, film))
        module = importlib.util.module_from_spec(described)
        described.loader.exec_module(module)
        sys.modules[described.name] = module
    with nf.Screen(width, height) as screen:
        screen.clear()
        module.draw(screen, number, folder)
        return screen._repr_png_()


def program():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("film", metavar="FILM", help="a Python file")
    parser.add_argument("first", metavar="FIRST", type=int)
    parser.add_argument("last", metavar="LAST", type=int)
    parser.add_argument("files", metavar="FILE", nargs="*", help="what the film reads: pictures, for example")
    parser.add_argument("--size", metavar="WIDTHxHEIGHT", default="640x360", help="of the frames, in pixels (640x360)")
    farm.add_arguments(parser)
    options = parser.parse_args()
    width, _, height = options.size.partition("x")
    if not (width.isdecimal() and height.isdecimal() and int(width) and int(height)):
        raise ValueError(f"the size is '{options.size}'; give it as 640x360")
    if options.last < options.first:
        raise ValueError(f"the last frame is {options.last}, before the first, {options.first}")

    files = {os.path.basename(path): pathlib.Path(path).read_bytes() for path in [options.film, *options.files]}
    if len(files) != 1 + len(options.files):
        raise ValueError("two of the files have the same name; they would lie in one folder")
    source = farm.digest(os.path.basename(options.film), *(part for name in sorted(files) for part in (name, files[name])))
    results = farm.Results(options.out, farm.digest(source, width, height), ".png")
    with farm.connect(options) as client:
        (sent,) = client.scatter([files])
        tasks = {str(number): (source, sent, os.path.basename(options.film), number, int(width), int(height))
                 for number in range(options.first, options.last + 1)}
        farm.run(client, results, tasks, draw)
    print(f"{len(tasks)} frames, {results.list}")


if __name__ == "__main__":
    farm.main(program)
