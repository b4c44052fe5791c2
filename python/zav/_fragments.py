# SPDX-License-Identifier: Apache-2.0
"""Predicts the fragment spectra of peptides."""

import math
import operator
import os
import re
from collections.abc import Iterable, Sequence
from typing import Any, NamedTuple, SupportsIndex, cast

import numpy as np
import numpy.typing as npt

from zav import _core, _models, _runtime
from zav._errors import InvalidInput

__all__ = ["PEAK_DTYPE", "FragmentPredictor", "Spectrum"]

#: The columns of the table that `FragmentPredictor.predict` returns.
PEAK_DTYPE: np.dtype[np.void] = np.dtype(
    [
        ("spectrum", "<i8"),
        ("mz", "<f8"),
        ("intensity", "<f8"),
        ("ion", "<U1"),
        ("number", "<i4"),
        ("charge", "<i4"),
        ("loss", "<U4"),
        ("isotope", "<i4"),
    ]
)

CHARGES = range(1, 6)

# Peptides between two looks at the signals: about 0.2 s on one core, and whole blocks of the network's 128.
_PIECE = 2048

_NO_RESIDUE = re.compile("[^ACDEFGHIKLMNPQRSTVWY]")


class Spectrum(NamedTuple):
    """A predicted spectrum, sorted by ascending m/z.

    Attributes
    ----------
    mz
        m/z in Da per elementary charge, float64.
    intensity
        Relative intensities, float64; the base peak is 1.
    """

    mz: npt.NDArray[np.float64]
    intensity: npt.NDArray[np.float64]


class FragmentPredictor:
    """Predicts the MS/MS fragment spectra of peptides, with one network per precursor charge from 1 to 5.

    Peptides are upper-case one-letter sequences of the 20 standard residues, N-terminus first. Their only modification
    is the fixed mass on every cysteine. The networks are meant for HCD at a normalised collision energy of about
    28 to 40.

    One object may be used from several threads: they take turns, a piece of 2048 peptides at a time, and other threads
    of the interpreter run meanwhile. For predictions side by side make one object per thread.

    Parameters
    ----------
    models
        Folder of the networks ``msms_charge1.pb`` to ``msms_charge5.pb``; None for those of the package. Load only
        networks that you trust: a network is a program.
    cysteine
        Mass in Da that is added to every cysteine. The default is carbamidomethylation.

    Raises
    ------
    Error
        A network is missing or is none, or the TensorFlow runtime is missing.
    InvalidInput
        `cysteine` is not finite.

    Examples
    --------
    >>> predictor = zav.FragmentPredictor()
    >>> table = predictor.predict(["PEPTIDEK", "LGGNEQVTR"], 2)
    >>> y_ions = table[(table["spectrum"] == 0) & (table["ion"] == "y")]
    >>> mz, intensity = predictor.spectrum("PEPTIDEK", 2)
    """

    def __init__(self, models: str | os.PathLike[str] | None = None, cysteine: float = 57.02146) -> None:
        if not math.isfinite(cysteine):
            raise InvalidInput(f"cysteine is {cysteine}, must be a finite mass")
        paths = _models.network_paths(models, [f"msms_charge{charge}.pb" for charge in CHARGES])
        _runtime.open_runtime()
        self._networks = _core.FragmentNetworks(paths, cysteine)

    def longest_peptide(self, charge: SupportsIndex) -> int:
        """Return the number of residues of the longest peptide that is predicted at a precursor charge.

        Parameters
        ----------
        charge
            Precursor charge, 1 to 5.

        Returns
        -------
        int
            27, 43, 50, 52 and 50 for charges 1 to 5.

        Raises
        ------
        InvalidInput
            There is no network for the charge.
        """
        return self._longest(operator.index(charge))

    def predict(
        self,
        peptides: Iterable[str],
        charges: SupportsIndex | Iterable[SupportsIndex],
        isotopes: bool = False,
    ) -> npt.NDArray[np.void]:
        """Predict the fragments of many peptides, each peak named after its fragment.

        A spectrum has no peaks over 2000 m/z or under an intensity of 0.025. Nothing is predicted when one of the
        peptides cannot be: the exception names the first. A Ctrl-C ends the call after the piece of 2048 peptides that
        it is at.

        Parameters
        ----------
        peptides
            Upper-case one-letter sequences.
        charges
            The precursor charge of each peptide, or one for all; 1 to 5.
        isotopes
            Whether the table holds the isotope peaks of the fragments beside the monoisotopic ones.

        Returns
        -------
        numpy.ndarray
            One row per peak, ordered by spectrum and then by ascending m/z, of type `PEAK_DTYPE`:

            ========= ======= ===================================================================
            spectrum  int64   place of the peptide among `peptides`, from 0
            mz        float64 Da per elementary charge
            intensity float64 relative; the base peak of a spectrum is 1
            ion       U1      ``y``, ``b`` or ``a``
            number    int32   residues of the fragment: the n of y_n
            charge    int32   of the fragment, 1 to 3
            loss      U4      neutral loss: ``-H2O``, ``-NH3`` or empty
            isotope   int32   heavy isotopes in the ion: 0 for the monoisotopic peak
            ========= ======= ===================================================================

        Raises
        ------
        InvalidInput
            A peptide is empty, holds a character that is none of the 20 residues, or is longer than its charge allows;
            a charge is not from 1 to 5; there are not as many charges as peptides; or a fragment weighs over 1e6 Da.
        TypeError
            A peptide is no str, or a charge is no integer.
        Error
            The network failed.
        """
        sequences = _sequences(peptides)
        precursor_charges = _charges(charges, len(sequences))
        self._check(sequences, precursor_charges)
        table = _core.PeakTable(len(sequences))
        for charge in sorted(set(precursor_charges)):
            indices = [index for index, each in enumerate(precursor_charges) if each == charge]
            indices.sort(key=lambda index: len(sequences[index]))  # the network computes like lengths together
            for start in range(0, len(indices), _PIECE):
                piece = indices[start : start + _PIECE]
                self._networks.predict(table, piece, [sequences[index] for index in piece], charge, isotopes)
        return table.take().view(PEAK_DTYPE)

    def spectrum(self, peptide: str, charge: SupportsIndex) -> Spectrum:
        """Predict the spectrum of one peptide with its isotope peaks.

        Parameters
        ----------
        peptide
            Upper-case one-letter sequence.
        charge
            Precursor charge, 1 to 5.

        Returns
        -------
        Spectrum
            The arrays `mz` and `intensity`: all peaks up to 2000 m/z from an intensity of 0.025 on, ascending in m/z.

        Raises
        ------
        InvalidInput, TypeError, Error
            As `predict`.
        """
        sequences = _sequences([peptide])
        precursor_charges = _charges(charge, 1)
        self._check(sequences, precursor_charges)
        return Spectrum(*self._networks.spectrum(sequences[0], precursor_charges[0]))

    def _longest(self, charge: int) -> int:
        if charge not in CHARGES:
            raise InvalidInput(f"charge {charge} is not predicted, only 1 to 5")
        return self._networks.longest_peptide(charge)

    def _check(self, sequences: list[str], charges: list[int]) -> None:
        """Refuse what the networks cannot predict. Only a list with an error is looked at peptide by peptide."""
        longest = {charge: self._longest(charge) for charge in set(charges)}
        limits = map(longest.__getitem__, charges)
        lengths = list(map(len, sequences))
        if all(map(operator.le, lengths, limits)) and 0 not in lengths and not _NO_RESIDUE.search("".join(sequences)):
            return
        for index, (sequence, charge) in enumerate(zip(sequences, charges, strict=True)):
            problem = _problem(sequence, longest[charge], charge)
            if problem:
                raise InvalidInput(f"peptide {index}, {sequence[:60]!r}: {problem}")


def _problem(sequence: str, longest: int, charge: int) -> str:
    if not sequence:
        return "the peptide is empty"
    if wrong := _NO_RESIDUE.search(sequence):
        return f"{wrong[0]!r} at position {wrong.start() + 1} is none of the 20 standard residues in upper case"
    if len(sequence) > longest:
        return f"{len(sequence)} residues, more than the {longest} of precursor charge {charge}"
    return ""


def _sequences(peptides: Iterable[str]) -> list[str]:
    if isinstance(peptides, str | bytes):
        raise TypeError("peptides is one text, must be a list of peptides")
    sequences = list(peptides)
    for kind in set(map(type, sequences)):
        if not issubclass(kind, str):
            index = next(i for i, each in enumerate(sequences) if type(each) is kind)
            raise TypeError(f"peptide {index} is of type {kind.__name__}, must be str")
    return sequences


def _charges(charges: SupportsIndex | Iterable[SupportsIndex], count: int) -> list[int]:
    if isinstance(charges, SupportsIndex) and not (isinstance(charges, np.ndarray) and charges.ndim):
        return [_charge(charges)] * count
    if isinstance(charges, np.ndarray):
        charges = _charge_array(charges)
    each = [_charge(charge) for charge in charges]
    if len(each) != count:
        raise InvalidInput(f"there are {len(each)} charges for {count} peptides")
    return each


def _charge_array(charges: npt.NDArray[Any]) -> Sequence[int]:
    if charges.ndim != 1:
        raise InvalidInput(f"charges has {charges.ndim} dimensions, must have 1")
    if charges.size and not np.issubdtype(charges.dtype, np.integer):
        raise TypeError(f"charges is of type {charges.dtype}, must be of integers")
    return cast(Sequence[int], charges.tolist())


def _charge(charge: SupportsIndex) -> int:
    try:
        return operator.index(charge)
    except TypeError:
        raise TypeError(f"a charge is of type {type(charge).__name__}, must be an integer") from None
