# SPDX-License-Identifier: Apache-2.0
"""Full disks, folders that cannot be written or go away, names that are too long, pipes that nobody reads, broken
runtimes. Each situation is a run of its own."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

import workbench
from workbench import Row

FULL_DISK_SIZE = "20m"
PIPE_CODE = 128 + signal.SIGPIPE


def environment(**more):
    return dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8", **more)


def zav(arguments, cwd, program=None, **more):
    return subprocess.run([program or workbench.PROGRAM, *arguments], cwd=cwd, env=environment(**more),
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=workbench.TIMEOUT, check=False)


def told(done, *parts):
    """Exit code 1 and one line that holds the parts."""
    lines = done.stderr.decode().splitlines()
    last = lines[-1] if lines else ""
    faults = [] if done.returncode == 1 else [f"exit code {done.returncode}: {lines[-2:]}"]
    if not last.startswith("zav: ") or not all(part in last for part in parts):
        faults.append(f"the last line is {last!r}")
    return faults


def only_these(folder, names):
    """`names` are all that a user sees in the folder."""
    found = {path.name for path in folder.iterdir()}
    return [f"{name} is left over" for name in found - set(names)] + [f"{name} is gone" for name in set(names) - found]


class Mounted:
    """A small disk of its own; None where this user may not mount one."""

    def __init__(self, folder, options):
        self.folder = folder
        done = subprocess.run(["mount", "-t", "tmpfs", "-o", options, "none", str(folder)], capture_output=True,
                              check=False)
        self.is_there = done.returncode == 0

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.is_there:
            subprocess.run(["umount", "-l", str(self.folder)], check=False)


def fill(folder, spare):
    """Leaves about `spare` bytes on the disk of a folder."""
    free = os.statvfs(folder).f_bavail * os.statvfs(folder).f_frsize
    with open(folder / "filler", "wb") as filler:
        filler.write(bytes(max(0, free - spare)))


def full_disk(base):
    disk = base / "disk"
    disk.mkdir()
    (base / "p.fasta").write_bytes(workbench.FASTA)
    with Mounted(disk, f"size={FULL_DISK_SIZE}") as mounted:
        if not mounted.is_there:
            yield "needs the right to mount", None
            return
        fill(disk, 0)
        for ending in workbench.LIBRARY_ENDINGS:
            (disk / f"lib.{ending}").write_bytes(b"")
            done = zav(["library", str(base / "p.fasta"), "-o", str(disk / f"lib.{ending}"), "--threads", "1"], base)
            faults = told(done, f"lib.{ending}") + only_these(disk, ["filler", f"lib.{ending}"])
            if (disk / f"lib.{ending}").read_bytes() != b"":
                faults.append("the older file was changed")
            (disk / f"lib.{ending}").unlink()
            yield f"library {ending}", faults
        done = zav(["spectrum", "LQSRPAAPPAPGPGQLTLR", "3", "-o", str(base / "s.tsv"), "--plot", str(disk / "s.png")], base)
        yield "spectrum --plot", told(done, "s.png", "No space left on device") + only_these(disk, ["filler"])


def device_that_is_full(base):
    done = zav(["spectrum", "LQSRPAAPPAPGPGQLTLR", "3", "-o", "/dev/full"], base)
    yield "spectrum -o /dev/full", told(done, "/dev/full", "No space left on device")
    with open("/dev/full", "wb") as full:
        done = subprocess.run([workbench.PROGRAM, "spectrum", "LQSRPAAPPAPGPGQLTLR", "3"], cwd=base, stdout=full,
                              env=environment(), stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, check=False)
    yield "spectrum > /dev/full", told(done, "standard output", "No space left on device")


def read_only_folder(base):
    disk = base / "disk"
    disk.mkdir()
    (base / "t.txt").write_bytes(workbench.chromatograms())
    with Mounted(disk, "ro,size=1m") as mounted:
        if not mounted.is_there:
            yield "needs the right to mount", None
            return
        for name, arguments in (("library", ["library", "--peptides", "p.txt", "-o", str(disk / "lib.tsv")]),
                                ("library dlib", ["library", "--peptides", "p.txt", "-o", str(disk / "lib.dlib")]),
                                ("spectrum", ["spectrum", "LLGWQK", "1", "-o", str(disk / "s.tsv")]),
                                ("limits", ["limits", "t.txt", "--method", "walk", "-o", str(disk / "l.tsv")]),
                                ("limits --plot", ["limits", "t.txt", "--method", "walk", "--plot", str(disk / "p")])):
            (base / "p.txt").write_text("LLGWQK\n")
            yield name, told(zav(arguments, base), str(disk))


def situation(what, faults, done):
    return (what, faults) if done.returncode else (what, faults, True)


def long_names(base):
    (base / "p.txt").write_text("LLGWQKK\n")
    (base / "t.txt").write_bytes(workbench.chromatograms())
    for length, ending in ((255, ".tsv"), (255, ".dlib"), (252, ".tsv"), (250, ".blib"), (256, ".tsv")):
        name = "n" * (length - len(ending)) + ending
        done = zav(["library", "--peptides", "p.txt", "-o", name], base)
        is_done = done.returncode == 0
        # The library may stand there, complete, when its manifest finds no name.
        made = [name, name + ".json"] if is_done else [name] if len(name) < 256 and (base / name).exists() else []
        faults = ([] if is_done else told(done, "nnn", "File name too long")) + only_these(base, ["p.txt", "t.txt", *made])
        for path in base.glob("nnn*"):
            path.unlink()
        yield situation(f"library, {length} bytes {ending}", faults, done)
    name = "n" * 251 + ".tsv"
    done = zav(["limits", "t.txt", "--method", "walk", "-o", name], base)
    faults = told(done, "File name too long") if done.returncode else only_these(base, ["p.txt", "t.txt", name])
    yield situation("limits, 255 bytes", faults, done)


def folder_that_goes(base):
    """Removed while the program waits for its input."""
    for ending in ("tsv", "dlib"):
        folder = base / ending
        folder.mkdir()
        process = subprocess.Popen([workbench.PROGRAM, "library", "-", "-o", str(folder / f"lib.{ending}")], cwd=base,
                                   env=environment(), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        process.stdin.write(workbench.FASTA)
        process.stdin.flush()
        for _ in range(300):  # until it has begun its output, where that can be seen
            if ending == "tsv" or any(folder.iterdir()):
                break
            signal.sigtimedwait([], 0.01)
        signal.sigtimedwait([], 0.3)
        shutil.rmtree(folder)
        _, stderr = process.communicate()
        done = subprocess.CompletedProcess([], process.returncode, b"", stderr)
        yield f"library {ending}", told(done, f"lib.{ending}", "No such file or directory")


def pipe_that_nobody_reads(base):
    (base / "list.txt").write_text("peptide\tcharge\n" + "LQSRPAAPPAPGPGQLTLR\t3\nLLGWQK\t1\n" * 100)
    (base / "t.txt").write_bytes(workbench.chromatograms())
    for name, command in (("spectrum", "spectrum --peptides list.txt"), ("limits", "limits t.txt --method walk"),
                          ("library", "library --peptides p.txt -f tsv -o -")):
        (base / "p.txt").write_text("LLGWQKK\n")
        process = subprocess.Popen([workbench.PROGRAM, *command.split()], cwd=base, env=environment(),
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   restore_signals=True)
        process.stdout.close()
        stderr = process.stderr.read().decode()
        code = process.wait()
        faults = [] if code in (-signal.SIGPIPE, PIPE_CODE) else [f"exit code {code}"]
        if "ipe" in stderr:
            faults.append(f"it says {stderr!r}")
        yield name, faults
    done = subprocess.run(["bash", "-c", f"'{workbench.PROGRAM}' spectrum --peptides list.txt | head -n 1; echo ${{PIPESTATUS[0]}}"],
                          cwd=base, env=environment(), capture_output=True, text=True, check=False)
    code = done.stdout.splitlines()[-1]
    yield "spectrum | head", [] if code in ("0", str(PIPE_CODE)) and not done.stderr else [f"{code}: {done.stderr!r}"]


def runtime_folder():
    cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache"))
    return next(iter(sorted((cache / "zav").glob("tensorflow-*/libtensorflow.so.2")))).parent


def program_with_runtime(base, files):
    """A folder with the program's libraries, whose runtime is what `files` says: name -> bytes, or a path to link to.
    The program looks for one in the folder zav beside its own library first."""
    folder = base / "program"
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "zav").mkdir(parents=True)
    for line in subprocess.run(["ldd", workbench.PROGRAM], capture_output=True, text=True, check=True).stdout.splitlines():
        words = line.split()
        if len(words) > 2 and words[0].startswith("libzav"):
            shutil.copy(words[2], folder / words[0])
    for name, content in files.items():
        if isinstance(content, bytes):
            (folder / "zav" / name).write_bytes(content)
        else:
            (folder / "zav" / name).symlink_to(content)
    return folder


def models():
    return str((pathlib.Path(workbench.PROGRAM).resolve().parent.parent / "share" / "zav" / "models").resolve())


def with_runtime(base, files, then):
    folder = program_with_runtime(base, files)
    return zav([*then, "--models", models()], base, LD_LIBRARY_PATH=str(folder))


def broken_runtimes(base):
    whole = runtime_folder()
    name = "libtensorflow.so.2"
    spectrum = ["spectrum", "LLGWQK", "1", "-o", str(base / "s.tsv")]
    with open(whole / name, "rb") as library:
        beginning = library.read(1 << 20)
    cases = {
        "empty": {name: b""},
        "cut after 1 MB": {name: beginning},
        "cut within its header": {name: beginning[:40]},
        "text": {name: b"this is no library\n" * 1000},
        "another library": {name: pathlib.Path("/lib/x86_64-linux-gnu/libz.so.1")},
        "a link to nothing": {name: base / "nothing"},
    }
    for what, files in cases.items():
        done = with_runtime(base, files, spectrum)
        if what == "a link to nothing":  # it then is not there, and the next place is looked at
            faults = [] if done.returncode in (0, 1) else [f"exit code {done.returncode}"]
        else:
            faults = told(done, name)
        if done.returncode != 0 and (base / "s.tsv").exists():
            faults.append("there is an output")
        (base / "s.tsv").unlink(missing_ok=True)
        yield situation(what, faults, done)


def runtime_that_is_replaced(base):
    """By a file that is none, once the program has opened it. The limits have to come out the same."""
    name = "libtensorflow.so.2"
    folder = program_with_runtime(base, {path.name: path for path in runtime_folder().iterdir()})
    command = [workbench.PROGRAM, "limits", "-", "--format", "tsv", "--threads", "1", "--models", models()]
    running = {"cwd": base, "env": environment(LD_LIBRARY_PATH=str(folder)), "stdout": subprocess.PIPE,
               "stderr": subprocess.PIPE, "stdin": subprocess.PIPE}
    heading, trace = workbench.chromatograms().split(b"\n", 1)
    traces = [trace.replace(b"one", b"one%d" % i).replace(b"two", b"two%d" % i) for i in range(100)]
    head, rest = heading + b"\n" + b"".join(traces[:50]), b"".join(traces[50:])
    with subprocess.Popen(command, **running) as process:
        expected, _ = process.communicate(head + rest)
    with subprocess.Popen(command, **running) as process:
        process.stdin.write(head)
        process.stdin.flush()
        until = time.monotonic() + workbench.TIMEOUT
        while "libtensorflow" not in pathlib.Path(f"/proc/{process.pid}/maps").read_text() and time.monotonic() < until:
            time.sleep(0.01)
        (base / "other").write_bytes(b"this is no library\n" * 1000)
        os.replace(base / "other", folder / "zav" / name)
        limits, said = process.communicate(rest)
    faults = [] if process.returncode == 0 else [f"exit code {process.returncode}: {said[-200:]!r}"]
    if limits != expected or not expected:
        faults.append("the limits are others")
    yield "replaced while it is in use", faults, True


def home_that_cannot_be_written(base):
    home = base / "home"
    home.mkdir()
    (base / "t.txt").write_bytes(workbench.chromatograms())
    with Mounted(home, "ro,size=1m") as mounted:
        homes = {"none": "/nonexistent", **({"read-only": str(home)} if mounted.is_there else {})}
        for name, arguments in (("spectrum --plot", ["spectrum", "LLGWQK", "1", "-o", "s.tsv", "--plot", "s.svg"]),
                                ("limits --plot", ["limits", "t.txt", "-o", "l.tsv", "--plot", "p"])):
            for which, value in homes.items():
                done = zav(arguments, base, HOME=value, XDG_CACHE_HOME=value + "/.cache", XDG_CONFIG_HOME=value)
                usual = [line for line in done.stderr.decode().splitlines() if not line.startswith("zav: ")]
                faults = [f"it says {line}" for line in usual]
                if done.returncode:
                    faults.append(f"exit code {done.returncode}")
                yield f"{name}, HOME={which}", faults, True


SITUATIONS = (full_disk, device_that_is_full, read_only_folder, long_names, folder_that_goes, pipe_that_nobody_reads,
              broken_runtimes, runtime_that_is_replaced, home_that_cannot_be_written)


def rows(is_short, jobs, only):
    del is_short, jobs
    for situations in SITUATIONS:
        row = Row("place", situations.__name__.replace("_", " "), "")
        if only not in row.command:
            continue
        with tempfile.TemporaryDirectory(prefix="zav-faults-") as base:
            for what, faults, *completed in situations(pathlib.Path(base)):
                if faults is None:
                    row.call = what
                else:
                    row.add(0 if completed else 1, faults, what)
        yield row
