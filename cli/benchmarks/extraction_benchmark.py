# SPDX-License-Identifier: Apache-2.0
"""What `zav limits RUN.mzML --targets LIST` costs for a whole run: traces a second, memory, and beside OpenMS.

    python3 extraction_benchmark.py ZAV [--spectra 3000] [--peaks 25000] [--targets 5000] [--zlib] [--seed 1]
                                    [--rounds 3] [--core 0] [--before ZAV] [--folder FOLDER]

Needs numpy and pyopenms 3.6.0 (the environment that scripts/readback makes has the latter). Simulates a run of
centroided MS1 spectra, an hour long, in which each target elutes once, as an indexed mzML file of about 1 GB; its peaks
between the targets are noise. Then `zav limits` with one thread and OpenMS's ChromatogramExtractor read the same file on
the same core in turn, each as a process of its own:

- `start`: zav on an empty trace, so TensorFlow and the network are loaded and nothing else is done
- `read`: zav with one target of which no spectrum is asked for: the file is read and decoded
- `extract`: zav with all targets, all of them too short for --min-point-count: no trace is given to the network
- `limits`: the whole command
- `OpenMS`: loading the file, then extracting the same traces

once with a window of two minutes for each target, once with the whole run as every trace (and --best 3). Times are of
the processor, which other work on the machine disturbs least. That both extract the same is shown first: the areas that
zav writes are computed again from OpenMS's traces. With --before another build of zav reads and extracts in turn.
"""

import argparse
import base64
import csv
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time
import zlib

import numpy
from measured_run import Run

SECONDS = 3600.0  # the run
SIGMA = 6.0  # of an eluting peak, in seconds
HALF_WINDOW = 60.0  # of a target's range of time
PPM = 10.0  # on either side
LOWEST_MZ, HIGHEST_MZ = 350.0, 1250.0

DOCUMENT = """<?xml version="1.0" encoding="utf-8"?>
<indexedmzML xmlns="http://psi.hupo.org/ms/mzml">
<mzML xmlns="http://psi.hupo.org/ms/mzml" id="run" version="1.1.0">
<cvList count="2">
<cv id="MS" fullName="Proteomics Standards Initiative Mass Spectrometry Ontology" URI="psi-ms.obo"/>
<cv id="UO" fullName="Unit Ontology" URI="unit.obo"/>
</cvList>
<fileDescription><fileContent>
<cvParam cvRef="MS" accession="MS:1000579" name="MS1 spectrum" value=""/>
</fileContent></fileDescription>
<softwareList count="1"><software id="simulation" version="1"/></softwareList>
<instrumentConfigurationList count="1"><instrumentConfiguration id="IC1"/></instrumentConfigurationList>
<dataProcessingList count="1"><dataProcessing id="none"><processingMethod order="0" softwareRef="simulation"/>
</dataProcessing></dataProcessingList>
<run id="run" defaultInstrumentConfigurationRef="IC1">
<spectrumList count="{count}" defaultDataProcessingRef="none">
"""

SPECTRUM = """<spectrum index="{index}" id="scan={number}" defaultArrayLength="{length}">
<cvParam cvRef="MS" accession="MS:1000511" name="ms level" value="1"/>
<cvParam cvRef="MS" accession="MS:1000579" name="MS1 spectrum" value=""/>
<cvParam cvRef="MS" accession="MS:1000127" name="centroid spectrum" value=""/>
<scanList count="1"><cvParam cvRef="MS" accession="MS:1000795" name="no combination" value=""/><scan>
<cvParam cvRef="MS" accession="MS:1000016" name="scan start time" value="{time!r}" unitCvRef="UO" \
unitAccession="UO:0000010" unitName="second"/>
</scan></scanList>
<binaryDataArrayList count="2">
{mzs}{intensities}</binaryDataArrayList></spectrum>
"""

ARRAY = """<binaryDataArray encodedLength="{length}">
<cvParam cvRef="MS" accession="{number}" name="{bits}-bit float" value=""/>
<cvParam cvRef="MS" accession="{packing}" name="{packing_name}" value=""/>
<cvParam cvRef="MS" accession="{accession}" name="{name}" value="" unitCvRef="MS" unitAccession="{unit}" \
unitName="{unit_name}"/>
<binary>{text}</binary></binaryDataArray>
"""

MZ = ("MS:1000514", "m/z array", "MS:1000040", "m/z")
INTENSITY = ("MS:1000515", "intensity array", "MS:1000131", "number of detector counts")


def array(values, kind, compresses):
    accession, name, unit, unit_name = kind
    packed = zlib.compress(values.tobytes(), 1) if compresses else values.tobytes()
    text = base64.b64encode(packed).decode()
    return ARRAY.format(
        length=len(text),
        number="MS:1000523" if values.itemsize == 8 else "MS:1000521",
        bits=8 * values.itemsize,
        packing="MS:1000574" if compresses else "MS:1000576",
        packing_name="zlib compression" if compresses else "no compression",
        accession=accession,
        name=name,
        unit=unit,
        unit_name=unit_name,
        text=text,
    )


class Simulation:
    """The targets and the spectra in which they elute."""

    def __init__(self, arguments):
        self.random = numpy.random.default_rng(arguments.seed)
        count = arguments.targets
        self.noise = arguments.peaks
        self.times = numpy.round((numpy.arange(arguments.spectra) + 0.5) * SECONDS / arguments.spectra, 4)
        self.mzs = self.random.uniform(LOWEST_MZ + 50, HIGHEST_MZ - 50, count)
        self.apexes = self.random.uniform(0.05 * SECONDS, 0.95 * SECONDS, count)
        self.heights = 10 ** self.random.uniform(4, 6.5, count)

    def peaks(self, now):
        """The spectrum at a time: m/z as 64-bit, intensities as 32-bit numbers, by m/z."""
        signal = self.heights * numpy.exp(-(((now - self.apexes) / SIGMA) ** 2) / 2)
        seen = signal > 100
        mzs = self.mzs[seen] * (1 + self.random.normal(0, 2e-6, seen.sum()))
        noise = self.random.uniform(LOWEST_MZ, HIGHEST_MZ, self.noise)
        mzs = numpy.concatenate([mzs, noise])
        scatter = self.random.normal(1, 0.03, seen.sum())
        intensities = numpy.concatenate([signal[seen] * scatter, self.random.lognormal(5, 1, self.noise)])
        order = numpy.argsort(mzs)
        return mzs[order], intensities[order].astype(numpy.float32)

    def write_run(self, path, compresses):
        offsets = []
        with open(path, "wb") as file:
            file.write(DOCUMENT.format(count=len(self.times)).encode())
            for index, now in enumerate(self.times):
                mzs, intensities = self.peaks(now)
                offsets.append(file.tell())
                spectrum = SPECTRUM.format(
                    index=index,
                    number=index + 1,
                    length=len(mzs),
                    time=float(now),
                    mzs=array(mzs, MZ, compresses),
                    intensities=array(intensities, INTENSITY, compresses),
                )
                file.write(spectrum.encode())
            file.write(b"</spectrumList></run></mzML>\n")
            index_offset = file.tell()
            entries = "".join(f'<offset idRef="scan={i + 1}">{offset}</offset>\n' for i, offset in enumerate(offsets))
            file.write(f'<indexList count="1"><index name="spectrum">\n{entries}</index></indexList>\n'.encode())
            file.write(f"<indexListOffset>{index_offset}</indexListOffset></indexedmzML>\n".encode())

    def write_targets(self, path, with_times):
        with open(path, "w", encoding="utf-8") as file:
            file.write("id\tmz" + ("\trt_from\trt_to\n" if with_times else "\n"))
            for number, (mz, apex) in enumerate(zip(self.mzs, self.apexes)):
                times = f"\t{apex - HALF_WINDOW:.3f}\t{apex + HALF_WINDOW:.3f}" if with_times else ""
                file.write(f"t{number}\t{mz:.6f}{times}\n")


def extract_with_openms(run, targets, traces):
    """Runs in a process of its own; writes the seconds of its two parts, and the traces where a path is given."""
    import pyopenms

    with open(targets, encoding="utf-8") as file:
        rows = list(csv.DictReader(file, delimiter="\t"))
    start = time.process_time()
    experiment = pyopenms.MSExperiment()
    pyopenms.MzMLFile().load(run, experiment)
    loaded = time.process_time()
    coordinates = []
    for row in sorted(rows, key=lambda row: float(row["mz"])):
        wanted = pyopenms.ExtractionCoordinates()
        wanted.id = row["id"]
        wanted.mz = float(row["mz"])
        wanted.rt_start = float(row.get("rt_from", 0))
        wanted.rt_end = float(row.get("rt_to", -1))  # an end before the start: the whole run
        coordinates.append(wanted)
    found = [pyopenms.OSChromatogram() for _ in coordinates]
    extractor = pyopenms.ChromatogramExtractorAlgorithm()
    access = pyopenms.SpectrumAccessOpenMS(experiment)
    extractor.extractChromatograms(access, found, coordinates, 2 * PPM, True, -1.0, "tophat")
    extracted = time.process_time()
    print(loaded - start, extracted - loaded)
    if traces:
        arrays = {}
        for wanted, trace in zip(coordinates, found):
            arrays[wanted.id] = numpy.array([trace.get_time_array(), trace.get_intensity_array()])
        numpy.savez(traces, **arrays)


class Case:
    """One list of targets on one run, with what each command said of it."""

    def __init__(self, name, arguments, run, targets, options):
        self.name = name
        self.arguments = arguments
        self.run = str(run)
        self.targets = str(targets)
        self.options = options
        self.folder = run.parent

    def zav(self, program, options, targets=None, run=None):
        extraction = ["--targets", targets or self.targets, "--ppm", str(PPM)]
        command = [program, "limits", run or self.run, *([] if run else extraction), "--threads", "1", *options]
        return Run(command, self.arguments.core, stderr=subprocess.DEVNULL)

    def openms(self, traces=""):
        times = self.folder / "openms.txt"
        command = [sys.executable, __file__, "--extract", self.run, self.targets, str(traces)]
        with open(times, "w", encoding="utf-8") as file:
            run = Run(command, self.arguments.core, stdout=file)
        run.load, run.extract = (float(part) for part in times.read_text().split())
        return run

    def prove(self):
        """That the areas of zav's peaks are those under OpenMS's traces."""
        peaks = self.folder / "peaks.tsv"
        traces = self.folder / "traces.npz"
        self.zav(self.arguments.zav, [*self.options, "-o", str(peaks)])
        self.openms(traces)
        compared = equal = 0
        with numpy.load(traces) as arrays, open(peaks, encoding="utf-8") as file:
            for row in csv.DictReader(file, delimiter="\t"):
                times, intensities = arrays[row["id"]]
                within = (times >= float(row["start_s"]) - 1e-4) & (times <= float(row["end_s"]) + 1e-4)
                area = numpy.trapezoid(intensities[within], times[within])
                compared += 1
                equal += abs(area - float(row["area"])) <= 1e-5 * max(area, 1)
        print(f"{self.name}: {equal} of {compared} areas are those under OpenMS's traces")
        if compared == 0 or equal < 0.999 * compared:
            sys.exit("the traces are not the same: nothing is measured")

    def measure(self):
        silent = self.folder / "silent.tsv"
        silent.write_text("mz\trt_from\trt_to\n500\t-2\t-1\n", encoding="utf-8")
        empty = self.folder / "empty.tsv"
        empty.write_text("rt\tintensity\n1\t0\n", encoding="utf-8")
        nowhere = ["-o", str(self.folder / "peaks.tsv")]
        no_network = ["--min-point-count", "1000000"]
        programs = {"zav": self.arguments.zav}
        if self.arguments.before:
            programs["before"] = self.arguments.before
        rounds = []
        for _ in range(self.arguments.rounds):
            runs = {"OpenMS": self.openms()}
            for name, program in programs.items():
                runs[f"{name} start"] = self.zav(program, nowhere, run=str(empty))
                runs[f"{name} read"] = self.zav(program, nowhere, targets=str(silent))
                runs[f"{name} extract"] = self.zav(program, nowhere + no_network)
            runs["zav limits"] = self.zav(programs["zav"], nowhere + self.options)
            rounds.append(runs)
        self.report(rounds, programs)

    def report(self, rounds, programs):
        traces = self.arguments.targets
        for name in rounds[0]:
            seconds = statistics.median(runs[name].computed for runs in rounds)
            wall = statistics.median(runs[name].wall for runs in rounds)
            memory = max(runs[name].memory for runs in rounds)
            print(f"{name:<16}{seconds:>8.2f} s  {wall:>8.2f} s by the clock  {memory:>6.0f} MiB", end="")
            print(f"  {traces / seconds:>8.0f} traces / s of a core" if name.endswith(("limits", "OpenMS")) else "")
        load = statistics.median(runs["OpenMS"].load for runs in rounds)
        extract = statistics.median(runs["OpenMS"].extract for runs in rounds)
        print(f"{'':<16}OpenMS: {load:.2f} s to load, {extract:.2f} s to extract")
        for name in programs:
            own = [runs[f"{name} extract"].computed - runs[f"{name} start"].computed for runs in rounds]
            ratios = [(runs["OpenMS"].load + runs["OpenMS"].extract) / spent for spent, runs in zip(own, rounds)]
            rate = traces / statistics.median(own)
            print(f"{name}: reading and extracting {statistics.median(own):.2f} s, {rate:.0f} traces / s of a core,")
            print(f"  {spread(ratios)} times as fast as OpenMS")
        network = [runs["zav limits"].computed - runs["zav extract"].computed for runs in rounds]
        share = [spent / runs["zav limits"].computed for spent, runs in zip(network, rounds)]
        print(f"zav: finding the limits {statistics.median(network):.2f} s, {spread(share)} of the command")


def spread(values):
    return f"{statistics.median(values):.2f} ({min(values):.2f} to {max(values):.2f})"


def main():
    if sys.argv[1:2] == ["--extract"]:
        extract_with_openms(*sys.argv[2:5])
        return
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("zav")
    parser.add_argument("--spectra", type=int, default=3000)
    parser.add_argument("--peaks", type=int, default=25000, help="of each spectrum, without those of the targets")
    parser.add_argument("--targets", type=int, default=5000)
    parser.add_argument("--zlib", action="store_true", help="compress the arrays")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--core", type=int, default=0, help="of the processor, for every command")
    parser.add_argument("--before", metavar="ZAV", help="another build, which runs in turn with it")
    parser.add_argument("--folder", help="for the run, which stays there; without it a temporary folder")
    arguments = parser.parse_args()

    with tempfile.TemporaryDirectory(dir=arguments.folder) as temporary:
        folder = pathlib.Path(temporary)
        simulation = Simulation(arguments)
        simulation.write_run(folder / "run.mzML", arguments.zlib)
        size = (folder / "run.mzML").stat().st_size / 1e6
        print(f"{arguments.spectra} spectra, {arguments.targets} targets, {size:.0f} MB", flush=True)
        for name, with_times, options in (("two minutes", True, []), ("whole run", False, ["--best", "3"])):
            simulation.write_targets(folder / f"{name}.tsv", with_times)
            case = Case(name, arguments, folder / "run.mzML", folder / f"{name}.tsv", options)
            case.prove()
            case.measure()


if __name__ == "__main__":
    main()
