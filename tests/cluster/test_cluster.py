"""The programs of examples/cluster with a scheduler and two workers, as processes of their own."""
import hashlib
import os
import pathlib
import signal
import subprocess
import sys

import pytest

root = pathlib.Path(__file__).resolve().parents[2]
programs = root / "examples" / "cluster"
film = programs / "orbit.py"


class Cluster:
    def __init__(self, folder):
        self.file = folder / "scheduler.json"
        self.log = open(folder / "log", "ab")
        self.scheduler = self._start("dask_scheduler", "--host", "127.0.0.1", "--port", "0", "--no-dashboard")
        self.workers = [self._start("dask_worker", "--host", "127.0.0.1", "--nthreads", "1", "--no-nanny", "--no-dashboard",
                                    "--local-directory", str(folder / f"worker{number}")) for number in range(2)]

    def _start(self, program, *arguments):
        return subprocess.Popen([sys.executable, "-m", f"distributed.cli.{program}", "--scheduler-file", str(self.file), *arguments],
                                stdout=self.log, stderr=self.log)

    def close(self):
        for process in [*self.workers, self.scheduler]:
            process.kill()
            process.wait()
        self.log.close()


@pytest.fixture
def cluster(tmp_path):
    made = Cluster(tmp_path)
    yield made
    made.close()


def call(program, *arguments, status=0):
    run = subprocess.run([sys.executable, programs / program, *map(str, arguments)], capture_output=True, text=True, timeout=300)
    assert run.returncode == status, run.stdout + run.stderr
    return run.stdout + run.stderr


def names(folder):
    """Task to file, of a folder of results whose files are what their names say."""
    lines = (folder / "list.txt").read_text().splitlines()
    found = dict(line.split(" ") for line in lines[1:])
    for name in found.values():
        content = (folder / name).read_bytes()
        assert name.startswith(hashlib.sha256(b"%d:" % len(content) + content).hexdigest())
    assert {path.name for path in folder.iterdir()} == {"list.txt", *found.values()}
    return found


def alone(film, numbers, width=160, height=90):
    """The same frames without a cluster."""
    script = f"""
import hashlib, importlib.util
import ninefold as nf
described = importlib.util.spec_from_file_location("film", {str(film)!r})
film = importlib.util.module_from_spec(described)
described.loader.exec_module(film)
for number in {list(numbers)}:
    with nf.Screen({width}, {height}) as screen:
        screen.clear()
        film.draw(screen, number, "")
        content = screen._repr_png_()
    print(number, hashlib.sha256(b"%d:" % len(content) + content).hexdigest() + ".png")
"""
    run = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True)
    return dict(line.split(" ") for line in run.stdout.splitlines())


def test_a_killed_worker_changes_no_byte(cluster, tmp_path):
    slow = tmp_path / "slow.py"
    slow.write_text(film.read_text() + """

orbit = draw

def draw(screen, number, folder):
    import time
    time.sleep(0.25)
    orbit(screen, number, folder)
""")
    out = tmp_path / "out"
    run = subprocess.Popen([sys.executable, programs / "frames.py", slow, "0", "29", "--size", "160x90", "--out", out,
                            "--scheduler-file", cluster.file], stdout=subprocess.PIPE, text=True)
    said = []
    for line in run.stdout:
        said.append(line)
        if len(said) == 6:  # both are at work, and most is to be done
            cluster.workers[0].send_signal(signal.SIGKILL)
            cluster.workers[0].wait()
    assert run.wait() == 0
    assert said[-1].startswith("30 frames")
    assert cluster.workers[1].poll() is None
    found = names(out)
    assert found == alone(slow, range(30))
    assert len(set(found.values())) == 30


def test_frames_are_drawn_once_and_come_out_the_same_again(cluster, tmp_path):
    at = ("--size", "160x90", "--scheduler-file", cluster.file, "--out")
    call("frames.py", film, 3, 6, *at, tmp_path / "one")
    said = call("frames.py", film, 0, 9, *at, tmp_path / "one")
    assert "4 of 10 are there already" in said and "6 of 6" in said
    call("frames.py", film, 0, 9, *at, tmp_path / "two")
    assert names(tmp_path / "one") == names(tmp_path / "two") == alone(film, range(10))
    # A damaged list or a missing file is work to be done again.
    first = names(tmp_path / "one")["0"]
    (tmp_path / "one" / first).unlink()
    assert "9 of 10 are there already" in call("frames.py", film, 0, 9, *at, tmp_path / "one")
    assert names(tmp_path / "one") == names(tmp_path / "two")


def test_a_film_that_depends_on_what_did_not_come_with_it_is_told(cluster, tmp_path):
    sys.path.insert(0, str(programs))
    import farm
    results = farm.Results(str(tmp_path / "out"), "source", ".png")
    results.add("1", b"first")
    results.add("1", b"first")
    with pytest.raises(RuntimeError, match="task 1 gave"):
        results.add("1", b"second")
    # Another film's results in the same folder are not taken for its own.
    assert farm.Results(str(tmp_path / "out"), "source", ".png").names == results.names
    assert farm.Results(str(tmp_path / "out"), "other", ".png").names == {}


def test_conform_in_shares(tmp_path):
    program = os.environ["NINEFOLD_CONFORM"]
    some = (program, "--shares", 1000, "--some", 6, "--scenes", 1, "--kinds", "plain", "--workers", 2, "--out")
    said = call("conform.py", *some, tmp_path / "one")
    assert "6 of 1000 shares, 0 with differences" in said
    call("conform.py", *some, tmp_path / "two")
    found = names(tmp_path / "one")
    assert found == names(tmp_path / "two") and len(found) == 6
    texts = [(tmp_path / "one" / name).read_text() for name in found.values()]
    assert all("plain: 31 of 31" in text for text in texts)


def test_a_share_with_a_difference_is_told(tmp_path):
    wrong = tmp_path / "wrong"
    wrong.write_text("#!/bin/sh\necho \"share $NINEFOLD_SHARE\"\n[ $NINEFOLD_SHARE != 1/3 ]\n")
    said = call("conform.py", wrong, "--shares", 3, "--workers", 2, "--out", tmp_path / "out", status=1)
    assert "share 1: see" in said and "3 of 3 shares, 1 with differences" in said


@pytest.mark.parametrize("arguments, words", [
    (("frames.py", film, 5, 3), "before the first"),
    (("frames.py", film, 0, 1, "--size", "big"), "give it as 640x360"),
    (("frames.py", "nowhere.py", 0, 1), "nowhere.py"),
    (("frames.py", film, 0, 1, film), "same name"),
    (("conform.py", "nowhere"), "nowhere"),
    (("conform.py", film, "--shares", 0), "from 1 to 1000"),
])
def test_what_is_wrong_is_said_before_anything_runs(arguments, words, tmp_path):
    assert words in call(*arguments, "--out", tmp_path / "out", status=1)
