# SPDX-License-Identifier: Apache-2.0
"""Makes a wheel that brings all its libraries with it, and their licences.

    python repair_wheel.py WHEEL FOLDER

auditwheel copies the libraries that the wheel needs into it, but for those that the manylinux rules expect on every
desktop. Of these, containers lack GLib, which Debian's Qt needs; this script adds it. The licences come from Debian's
packages, so this runs on Debian.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
from importlib.metadata import distribution
from pathlib import Path

# What every Debian with a Python has, however small.
EXPECTED = re.compile(r"(ld-linux-.*|lib(c|m|dl|pthread|rt|resolv|gcc_s|stdc\+\+|z))\.so\.\d+$")
# Their code is compiled into the libraries and the program, or their headers are.
COMPILED_IN = ["libboost1.74-dev", "libcli11-dev", "libeigen3-dev", "nlohmann-json3-dev"]
COMMON_LICENCES = Path("/usr/share/common-licenses")


def run(*command: str | Path) -> str:
    """Return what a command writes; its failure ends the script."""
    return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE, text=True).stdout


def system_libraries() -> dict[str, Path]:
    """Return the paths of the system's libraries by their names."""
    found: dict[str, Path] = {}
    for line in run("/sbin/ldconfig", "-p").splitlines():
        if match := re.match(r"\s+(\S+) \(libc6,x86-64.*\) => (\S+)", line):
            found.setdefault(match[1], Path(match[2]))
    return found


def needed(library: Path) -> list[str]:
    """Return the names of the libraries that a file asks for."""
    return run("patchelf", "--print-needed", library).split()


def is_elf(path: Path) -> bool:
    """Return whether a file is a library or a program."""
    with path.open("rb") as file:
        return file.read(4) == b"\x7fELF"


def add_missing(package: Path, libraries: Path) -> None:
    """Copy the libraries that auditwheel leaves to the desktop, each under a name of its own as auditwheel does."""
    system = system_libraries()
    own = {path.name for path in package.rglob("*.so*")}
    added: dict[str, str] = {}
    waiting = [path for folder in (package, libraries) for path in folder.rglob("*") if path.is_file() and is_elf(path)]
    while waiting:
        library = waiting.pop()
        for name in needed(library):
            if EXPECTED.match(name) or name in own or (libraries / name).exists():
                continue
            if name not in added:
                added[name] = unique_name(system[name])
                copy = libraries / added[name]
                shutil.copy(system[name], copy)
                run("patchelf", "--set-soname", copy.name, "--force-rpath", "--set-rpath", "$ORIGIN", copy)
                waiting.append(copy)
            run("patchelf", "--replace-needed", name, added[name], library)
    print("added:", ", ".join(added) or "nothing")


def unique_name(library: Path) -> str:
    """Return the name of a library with a part of its hash."""
    digest = hashlib.sha256(library.read_bytes()).hexdigest()[:8]
    stem, ending = library.name.split(".so", 1)
    return f"{stem}-{digest}.so{ending}"


def packages_of(libraries: Path) -> list[str]:
    """Return the Debian packages whose code the wheel holds."""
    system = system_libraries()
    packages = set(COMPILED_IN)
    for path in libraries.iterdir():
        name = re.sub(r"-[0-9a-f]{8}(?=\.so)", "", path.name)
        origin = system.get(name) or next(each for each in system.values() if each.resolve().name == name)
        # Packages may say /lib where the path is /usr/lib.
        packages.add(run("dpkg", "-S", f"*/lib/*/{origin.resolve().name}").split(":")[0])
    return sorted(packages)


def add_licences(info: Path, libraries: Path) -> None:
    """Write the licences of all that is bundled, the texts they refer to, and where their sources are."""
    folder = info / "licenses" / "bundled"
    folder.mkdir(parents=True)
    lines = ["What this wheel holds beside the code of zav, as Debian packages:", ""]
    referred: set[str] = set()
    for package in packages_of(libraries):
        asked = "${Version}\t${source:Package}\t${source:Version}"
        version, source, source_version = run("dpkg-query", "-W", "-f", asked, package).split("\t")
        text = (Path("/usr/share/doc") / package / "copyright").read_text(encoding="utf-8", errors="replace")
        (folder / f"{source}.txt").write_text(text, encoding="utf-8")
        referred.update(re.findall(r"common-licenses/([A-Z][\w.+-]*[\w])", text))
        lines.append(f"{package} {version}: licence in {source}.txt, source package {source} {source_version}")
    for name in sorted(each for each in referred if (COMMON_LICENCES / each).is_file()):
        shutil.copy((COMMON_LICENCES / name).resolve(), folder / f"{name}.txt")
    shutil.copy(nanobind_licence(), folder / "nanobind.txt")
    lines += [
        f"nanobind {distribution('nanobind').version} (headers): licence in nanobind.txt, source on PyPI",
        "",
        "The sources are in these source packages of Debian. The libraries are files of their own in zav.libs and"
        " may be replaced.",
    ]
    (folder / "NOTICE.txt").write_text("\n".join(lines) + "\n", encoding="utf-8")


def nanobind_licence() -> Path:
    """Return the licence file of the installed nanobind."""
    for file in distribution("nanobind").files or ():
        if file.name == "LICENSE":
            return Path(str(file.locate()))
    sys.exit("the installed nanobind has no licence file")


def main() -> None:
    """Repair the wheel of the arguments."""
    wheel, target = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as work:
        run(sys.executable, "-m", "auditwheel", "repair", "--wheel-dir", work, wheel)
        [repaired] = Path(work).glob("*.whl")
        run(sys.executable, "-m", "wheel", "unpack", "--dest", work, repaired)
        [root] = (path for path in Path(work).iterdir() if path.is_dir())
        [info] = root.glob("*.dist-info")
        add_missing(root / "zav", root / "zav.libs")
        add_licences(info, root / "zav.libs")
        target.mkdir(parents=True, exist_ok=True)
        os.environ.setdefault("SOURCE_DATE_EPOCH", "1577836800")
        run(sys.executable, "-m", "wheel", "pack", "--dest-dir", target, root)


if __name__ == "__main__":
    main()
