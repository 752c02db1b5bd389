"""What the programs here share: the cluster, and a folder of results that are named by their content."""
import argparse
import hashlib
import os
import pathlib
import sys
import tempfile
from typing import Any, Callable, Iterator

import dask
import distributed


def digest(*parts: Any) -> str:
    """A name for content: equal only where all parts are, in their order."""
    made = hashlib.sha256()
    for part in parts:
        content = part if isinstance(part, bytes) else str(part).encode()
        made.update(b"%d:" % len(content) + content)
    return made.hexdigest()


def add_arguments(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("--out", metavar="DIR", default="results", help="where results go (results)")
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--workers", metavar="N", type=int, default=os.cpu_count(), help="processes on this machine (one for each core)")
    where.add_argument("--scheduler", metavar="ADDRESS", help="a cluster's scheduler, tcp://HOST:8786, instead of this machine")
    where.add_argument("--scheduler-file", metavar="FILE", help="the same, by the file that the scheduler wrote")


def connect(options: argparse.Namespace) -> distributed.Client:
    if options.scheduler:
        return distributed.Client(options.scheduler)
    if options.scheduler_file:
        return distributed.Client(scheduler_file=options.scheduler_file)
    # The library has one state for a process: a thread each.
    return distributed.Client(n_workers=options.workers, threads_per_worker=1, processes=True, dashboard_address=None, host="127.0.0.1")


class Results:
    """A folder of files that are named by their content, and the list of which task gave which. What an earlier run with the same
    `source` left there is kept and not done again."""

    def __init__(self, folder: str, source: str, suffix: str) -> None:
        self.folder, self.suffix = pathlib.Path(folder), suffix
        self.folder.mkdir(parents=True, exist_ok=True)
        self.list = self.folder / "list.txt"
        self.first = f"# {source}"
        self.names: dict[str, str] = {}
        lines = self.list.read_text().splitlines() if self.list.exists() else []
        if lines[:1] == [self.first]:
            for line in lines[1:]:
                task, name = line.split(" ")
                if (self.folder / name).exists():
                    self.names[task] = name

    def add(self, task: str, content: bytes) -> None:
        """Keeps a result. The same task may come more than once, as tasks of lost workers do; its bytes must be the same."""
        name = digest(content) + self.suffix
        if self.names.setdefault(task, name) != name:
            raise RuntimeError(f"task {task} gave {self.names[task]} at first, and now {name}: it depends on something that did not "
                               "come with it")
        self._write(self.folder / name, content)
        ordered = sorted(self.names, key=lambda each: (len(each), each))
        self._write(self.list, "".join(f"{line}\n" for line in [self.first, *(f"{each} {self.names[each]}" for each in ordered)]).encode())

    def _write(self, path: pathlib.Path, content: bytes) -> None:
        """A file is there whole or not at all."""
        with tempfile.NamedTemporaryFile(dir=self.folder, delete=False) as file:
            file.write(content)
        os.chmod(file.name, 0o644)
        os.replace(file.name, path)


def run(client: distributed.Client, results: Results, tasks: "dict[str, tuple[Any, ...]]", function: Callable[..., bytes]) -> None:
    """Calls function(*arguments) for each task on the cluster and keeps what it returns. A task whose worker is lost is given to
    another; one that raises ends the run with its exception, and what is done stays."""
    waiting = {task: arguments for task, arguments in tasks.items() if task not in results.names}
    if len(waiting) < len(tasks):
        print(f"{len(tasks) - len(waiting)} of {len(tasks)} are there already", flush=True)
    futures = {client.submit(function, *arguments, key=f"{task}-{results.first}", retries=0): task for task, arguments in waiting.items()}
    done = 0
    for future, content in _finished(futures):
        results.add(futures[future], content)
        done += 1
        print(f"{done} of {len(futures)}: {futures[future]} {results.names[futures[future]]}", flush=True)


def _finished(futures: Any) -> "Iterator[tuple[Any, bytes]]":
    yield from distributed.as_completed(list(futures), with_results=True)


def main(program: Callable[[], None]) -> None:
    """Runs it, and makes a message of what a user can mend."""
    dask.config.set({"distributed.scheduler.allowed-failures": 10})
    try:
        program()
    except (ImportError, OSError, RuntimeError, ValueError) as error:
        sys.exit(f"{os.path.basename(sys.argv[0])}: {error}")
