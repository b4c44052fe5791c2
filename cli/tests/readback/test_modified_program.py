# SPDX-License-Identifier: Apache-2.0
"""A library with variable modifications, made by the program that ZAV_PROGRAM names: precursors are those of pyteomics'
digestion and masses, and every reader finds the same modifications, retention times and peaks."""

import dataclasses
import re
import warnings

import matchms.importing
import mzspeclib
import pyopenms
import pyteomics.mass
import pyteomics.mgf
import pytest
from alphabase.spectral_library.reader import LibraryReaderBase
from test_alphabase import FRAGMENTS, LOSSES
from test_program import FASTA, digest, program

import expected

MASSES = {4: 57.021464, 35: 15.994915}  # Da, of Unimod's accessions
CHARGES = (1, 2, 3, 4)
PRINTED = 2e-4  # the digits of an intensity that all formats have


@dataclasses.dataclass
class Entry:
    precursor_mz: float
    time: float  # iRT, None where the format has no place for it
    peaks: dict  # intensity by series, number, loss and charge of the ion
    unnamed: list = dataclasses.field(default_factory=list)  # intensities of peaks that the reader gives no name


def by_position(proforma):
    """Accessions by position of `AC[UNIMOD:4]DM[UNIMOD:35]K`, and the plain peptide."""
    placed, plain = {}, ""
    for letter, accession in re.findall(r"([A-Z])(?:\[UNIMOD:(\d+)\])?", proforma):
        plain += letter
        if accession:
            placed[len(plain)] = int(accession)
    return plain, placed


def key(peptide, charge, placed):
    return peptide, charge, tuple(sorted(placed.items()))


def ion_of(text):
    series, number, loss, charge = re.fullmatch(r"([aby])(\d+)(-[A-Z0-9]+|)(?:\^(\d))?", text.split("/")[0]).groups()
    return series, int(number), loss, int(charge or 1)


def read_mzspeclib(path):
    entries = {}
    for spectrum in mzspeclib.SpectrumLibrary(filename=str(path)).read():
        (analyte,) = spectrum.analytes.values()
        notation = str(analyte.get_attribute("MS:1003270|proforma peptidoform ion notation")).split("/")[0]
        names = {"Carbamidomethyl": 4, "Oxidation": 35}
        notation = re.sub(r"\[(\w+)\]", lambda match: f"[UNIMOD:{names[match[1]]}]", notation)
        plain, placed = by_position(notation)
        peaks = {ion_of(str(ions[0])): intensity for _, intensity, ions, _ in spectrum.peak_list}
        time = float(spectrum.get_attribute("MS:1000896|normalized retention time"))
        entries[key(plain, spectrum.precursor_charge, placed)] = Entry(spectrum.precursor_mz, time, peaks)
    return entries


def read_msp(path):
    entries = {}
    for spectrum in matchms.importing.load_from_msp(str(path)):
        fields = dict(field.split("=", 1) for field in spectrum.get("comment").split(" "))
        names = {"Carbamidomethyl": 4, "Oxidation": 35}
        modifications = [one.split(",") for one in fields["Mods"].split("/")[1:]]
        placed = {int(place) + 1: names[name] for place, _, name in modifications}
        peptide, charge = spectrum.get("compound_name").split("/")
        comments = spectrum.get("peak_comments")
        entry = Entry(spectrum.get("precursor_mz"), float(fields["iRT"]), {})
        masses = list(spectrum.peaks.mz)
        for mz, intensity in zip(masses, spectrum.peaks.intensities, strict=True):
            if masses.count(mz) == 1:
                entry.peaks[ion_of(comments[mz])] = intensity
            else:  # it keeps one annotation for an m/z
                entry.unnamed.append(intensity)
        entries[key(peptide, int(charge), placed)] = entry
    return entries


def read_mgf(path):
    entries = {}
    with pyteomics.mgf.read(str(path), use_index=False) as reader:
        for spectrum in reader:
            notation, charge = spectrum["params"]["title"].split("/")
            plain, placed = by_position(notation)
            if not placed:  # a title without modifications is that of the form with the fixed ones
                placed = {i: 4 for i, letter in enumerate(plain, start=1) if letter == "C"}
            intensities = list(spectrum["intensity array"])
            entries[key(plain, int(charge), placed)] = Entry(spectrum["params"]["pepmass"][0], None, {}, intensities)
    return entries


def read_by_openms(path):
    experiment = pyopenms.TargetedExperiment()
    if path.suffix == ".pqp":
        pyopenms.TransitionPQPFile().convertPQPToTargetedExperiment(str(path).encode(), experiment, True)
    else:
        pyopenms.TransitionTSVFile().convertTSVToTargetedExperiment(str(path), experiment)
    entries, of_id = {}, {}
    for peptide in experiment.getPeptides():
        placed = {one.location + 1: one.unimod_id for one in peptide.mods}
        of_id[peptide.id] = Entry(0.0, peptide.getRetentionTime(), {})
        entries[key(peptide.sequence, peptide.getChargeState(), placed)] = of_id[peptide.id]
    for transition in experiment.getTransitions():
        entry = of_id[transition.getPeptideRef()]
        entry.precursor_mz = transition.getPrecursorMZ()
        entry.peaks[ion_of(transition.getMetaValue("annotation"))] = transition.getLibraryIntensity()
    return entries


def read_by_alphabase(path):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        reader = LibraryReaderBase(charged_frag_types=FRAGMENTS, precursor_mz_min=0, precursor_mz_max=5000)
        reader.import_file(str(path))
    names = {"Carbamidomethyl@C": 4, "Oxidation@M": 35}
    losses = {shown: loss for loss, shown in LOSSES.items()}
    entries = {}
    for row in reader.precursor_df.itertuples():
        sites = [int(site) for site in row.mod_sites.split(";") if site]
        placed = dict(zip(sites, (names[name] for name in row.mods.split(";") if name), strict=True))
        peaks = {}
        read = reader.fragment_intensity_df.iloc[row.frag_start_idx : row.frag_stop_idx].reset_index(drop=True)
        for column in FRAGMENTS:
            series, loss, charge = re.fullmatch(r"([by])(_\w+?|)_z(\d)", column).groups()
            for bond, intensity in enumerate(read[column], start=1):
                if intensity > 0:
                    number = bond if series == "b" else len(row.sequence) - bond
                    peaks[series, number, losses[loss], int(charge)] = intensity
        entries[key(row.sequence, row.charge, placed)] = Entry(row.precursor_mz, row.rt, peaks)
    return entries


def forms(peptide):
    """Plain cysteines carry the fixed modification; at most one methionine is oxidised."""
    fixed = {i: 4 for i, letter in enumerate(peptide, start=1) if letter == "C"}
    oxidised = [{i: 35} for i, letter in enumerate(peptide, start=1) if letter == "M"]
    return [fixed | one for one in [{}, *oxidised]]


def wanted_precursors():
    found = {}
    for peptide in digest():
        for placed in forms(peptide):
            for charge in CHARGES:
                added = sum(MASSES[accession] for accession in placed.values())
                mz = pyteomics.mass.fast_mass(peptide, charge=charge) + added / charge
                if 300 <= mz <= 1800:
                    found[key(peptide, charge, placed)] = mz
    return found


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    made = tmp_path_factory.mktemp("modified")
    options = ["--missed-cleavages", 1, "--variable", "Oxidation@M", "--charges", "1-4"]
    for ending in ("mzSpecLib.txt", "msp", "mgf", "tsv", "pqp"):
        program("library", FASTA, "-o", made / f"lib.{ending}", *options)
    return made


@pytest.fixture(scope="module")
def main(folder):
    return read_mzspeclib(folder / "lib.mzSpecLib.txt")


def test_precursors_are_those_that_were_asked_for(main):
    wanted = wanted_precursors()
    assert main.keys() == wanted.keys()
    assert any(35 in dict(placed).values() for _, _, placed in main)
    for each, entry in main.items():
        assert entry.precursor_mz == pytest.approx(wanted[each], abs=2 * expected.MZ)


def test_times_are_those_of_the_program_for_retention_times(main, tmp_path):
    def notation(peptide, placed):
        tags = dict(placed)
        return "".join(
            letter + (f"[UNIMOD:{tags[i]}]" if i in tags else "") for i, letter in enumerate(peptide, start=1)
        )

    forms_of_main = sorted({(peptide, placed) for peptide, _, placed in main})
    listed = tmp_path / "list.txt"
    listed.write_text("".join(f"{notation(*one)}\n" for one in forms_of_main))
    rows = program("retention", "--peptides", listed).decode().splitlines()[1:]
    times = {form: float(row.split("\t")[1]) for form, row in zip(forms_of_main, rows, strict=True)}
    for (peptide, _, placed), entry in main.items():
        # A block of another size sums in another order.
        assert entry.time == pytest.approx(times[peptide, placed], abs=0.02)


def comparable(peaks, has_a_ions=True, names_all_losses=True):
    """The peaks that a reader takes, relative to the highest of them."""
    taken = {
        ion: intensity
        for ion, intensity in peaks.items()
        if (has_a_ions or ion[0] != "a") and (names_all_losses or (ion[2] in LOSSES and ion[3] <= 2))
    }
    highest = max(taken.values())
    return {ion: intensity / highest for ion, intensity in taken.items()}


@pytest.mark.parametrize(
    "ending, read, has_a_ions, names_all_losses",
    [
        ("msp", read_msp, True, True),
        ("mgf", read_mgf, True, True),
        ("tsv", read_by_openms, False, True),
        ("pqp", read_by_openms, False, True),
        ("tsv", read_by_alphabase, False, False),
    ],
    ids=["msp-matchms", "mgf-pyteomics", "tsv-openms", "pqp-openms", "tsv-alphabase"],
)
def test_readers_find_modifications_times_and_peaks(folder, main, ending, read, has_a_ions, names_all_losses):
    entries = read(folder / f"lib.{ending}")
    assert entries.keys() == main.keys()
    for each, entry in entries.items():
        assert entry.precursor_mz == pytest.approx(main[each].precursor_mz, abs=3 * expected.MZ)
        if entry.time is not None:
            assert entry.time == pytest.approx(main[each].time, abs=2 * expected.TIME)
        wanted = comparable(main[each].peaks, has_a_ions, names_all_losses)
        highest = max([*entry.peaks.values(), *entry.unnamed])
        for ion, intensity in entry.peaks.items():
            assert intensity / highest == pytest.approx(wanted.pop(ion), abs=PRINTED)
        unnamed = sorted(intensity / highest for intensity in entry.unnamed)
        assert unnamed == pytest.approx(sorted(wanted.values()), abs=PRINTED)
