"""The wheel and the source archive, built offline and used as installed; types; how the libraries are found."""
import importlib.util
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile

import ninefold as nf
import pytest

from conftest import root

package = root / "python"


def run(*arguments, **variables):
    environment = {name: value for name, value in os.environ.items() if not name.startswith(("NINEFOLD_", "PYTHONPATH"))}
    return subprocess.run([sys.executable, *map(str, arguments)], env={**environment, **variables}, cwd=pathlib.Path(sys.executable).parent,
                          capture_output=True, text=True)


@pytest.fixture(scope="module")
def installed(tmp_path_factory):
    """The wheel, which was built from the source archive, in a folder of its own."""
    for module in ("build", "pip", "setuptools", "wheel"):
        if not importlib.util.find_spec(module):
            pytest.skip(f"no {module}")
    folder = tmp_path_factory.mktemp("package")
    shutil.copytree(package, folder / "source", ignore=shutil.ignore_patterns("__pycache__", "*.egg-info", "build", "dist"))
    built = run("-m", "build", "--no-isolation", "--outdir", folder / "dist", folder / "source")
    assert built.returncode == 0, built.stdout + built.stderr
    wheel, = (folder / "dist").glob("*.whl")
    archive, = (folder / "dist").glob("*.tar.gz")
    assert wheel.name == f"ninefold-{nf.__version__}-py3-none-any.whl"
    with tarfile.open(archive) as files:
        names = {pathlib.PurePath(name).name for name in files.getnames()}
    assert {"_description.py", "py.typed", "README.md", "pyproject.toml"} <= names
    done = run("-m", "pip", "install", "--no-index", "--no-deps", "--target", folder / "site", wheel)
    assert done.returncode == 0, done.stderr
    return folder / "site"


def test_the_first_program_of_the_readme(installed, tmp_path):
    program = re.search(r"```python\n(.*?)```", (package / "README.md").read_text(), re.S).group(1)
    (tmp_path / "first.py").write_text(program)
    done = subprocess.run([sys.executable, "first.py"], cwd=tmp_path, capture_output=True, text=True,
                          env={**os.environ, "PYTHONPATH": str(installed)})
    assert done.returncode == 0, done.stderr
    picture = nf.load(tmp_path / "first.png")
    assert (picture.width, picture.height) == (320, 200) and len(set(picture.pixels.ravel().tolist())) > 100


def test_libraries_beside_the_package(installed, tmp_path):
    site = shutil.copytree(installed, tmp_path / "site")
    for variable in ("NINEFOLD_LIBRARY", "NINEFOLD_KIT"):
        file = pathlib.Path(os.environ[variable]).resolve()
        shutil.copy(file, site / "ninefold" / (file.name.split(".so")[0] + ".so.1"))
    code = "import ninefold; ninefold.Screen(16, 16); print(open('/proc/self/maps').read())"
    done = run("-c", code, PYTHONPATH=str(site))
    assert done.returncode == 0, done.stderr
    loaded = {line.split()[-1] for line in done.stdout.splitlines() if "libninefold" in line}
    assert len(loaded) == 2 and all(path.startswith(str(site)) for path in loaded)


def test_libraries_that_are_not_there(installed):
    done = run("-c", "import ninefold", PYTHONPATH=str(installed), NINEFOLD_LIBRARY="/nowhere/libninefold.so")
    assert done.returncode == 1 and "ImportError: cannot load ninefold: /nowhere/libninefold.so" in done.stderr
    assert "name its file in NINEFOLD_LIBRARY" in done.stderr


def test_types(tmp_path):
    if not importlib.util.find_spec("mypy"):
        pytest.skip("no mypy")
    (tmp_path / "host.py").write_text(
        "import ninefold as nf\nfrom typing import Optional\n"
        "size: int = nf.Texture(4, 4).width\nselected: Optional[nf.Screen] = nf.selected()\nnf.sprite('x', 0, 0)\n")
    checked = run("-m", "mypy", "--strict", "--cache-dir", tmp_path / "cache", "-p", "ninefold", MYPYPATH=str(package))
    assert checked.returncode == 0, checked.stdout
    checked = run("-m", "mypy", "--strict", "--cache-dir", tmp_path / "cache", tmp_path / "host.py", MYPYPATH=str(package))
    errors = [line for line in checked.stdout.splitlines() if ": error:" in line]
    assert len(errors) == 1 and "host.py:5" in errors[0] and '"sprite"' in errors[0], checked.stdout
