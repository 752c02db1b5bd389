#!/usr/bin/env python3
"""Compares the library with its reference at depth, in shares, on the processors of this machine or on a cluster.

PROGRAM is the build's tests/tools/conform; it is sent along, so the machines need nothing of the build. It takes the codes in N
shares, a task each. DIR gets what each share said, in files named by their content, and list.txt, which says which is which;
shares that are there already are not run again. Ends with 1 where a share found a difference."""
import argparse
import pathlib
import sys

import farm


def compare(source, program, share, shares, arguments):
    """On a worker: what the program says of a share, without times, and its status."""
    import os
    import re
    import subprocess
    import tempfile

    path = os.path.join(tempfile.gettempdir(), f"ninefold-conform-{os.getuid()}-{source}")
    if not os.path.exists(path):
        with tempfile.NamedTemporaryFile(dir=tempfile.gettempdir(), delete=False) as file:
            file.write(program)
        os.chmod(file.name, 0o700)
        os.replace(file.name, path)
    said = subprocess.run([path, *arguments], env={**os.environ, "NINEFOLD_SHARE": f"{share}/{shares}", "NINEFOLD_JOBS": "1"},
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    text = re.sub(r"(, | in )\d+ s\b", "", said.stdout)
    return f"share {share}/{shares}\n{text}status {said.returncode}\n".encode()


def program():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", metavar="PROGRAM")
    parser.add_argument("--shares", metavar="N", type=int, default=100, help="tasks that all codes are divided into, up to 1000 (100)")
    parser.add_argument("--some", metavar="M", type=int, help="only the first M shares")
    parser.add_argument("--scenes", metavar="N", type=int, default=60, help="scenes of each code (60)")
    parser.add_argument("--seed", metavar="N", type=int, default=1, help="of the scenes (1)")
    parser.add_argument("--kinds", metavar="LIST", default="plain,big,overlap,guard", help="of scenes (plain,big,overlap,guard)")
    farm.add_arguments(parser)
    options = parser.parse_args()
    if not 1 <= options.shares <= 1000:
        raise ValueError(f"--shares is {options.shares}; it goes from 1 to 1000")

    content = pathlib.Path(options.program).read_bytes()
    source = farm.digest(content)
    arguments = ["--scenes", str(options.scenes), "--seed", str(options.seed), "--kinds", options.kinds]
    results = farm.Results(options.out, farm.digest(source, options.shares, *arguments), ".txt")
    with farm.connect(options) as client:
        (sent,) = client.scatter([content])
        tasks = {str(share): (source, sent, share, options.shares, arguments) for share in range(options.some or options.shares)}
        farm.run(client, results, tasks, compare)

    failed = [share for share in tasks if not (results.folder / results.names[share]).read_text().endswith("status 0\n")]
    for share in failed:
        print(f"share {share}: see {results.folder / results.names[share]}")
    print(f"{len(tasks)} of {options.shares} shares, {len(failed)} with differences")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    farm.main(program)
