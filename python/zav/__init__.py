# SPDX-License-Identifier: Apache-2.0
"""Trained-network predictors for mass-spectrometry proteomics.

`FragmentPredictor` predicts the MS/MS spectra of peptides, `LimitsDetector` and `Splitter` find the peaks of
chromatograms, and `library` makes a spectral library of the peptides of a FASTA file. Failures are raised as `Error`,
or as `InvalidInput` where the input is at fault.
"""

from importlib.metadata import version as _version

from zav._chromatograms import Limits, LimitsDetector, Splits, Splitter
from zav._errors import CaughtAt, Error, ErrorCode, InvalidInput
from zav._fragments import PEAK_DTYPE, FragmentPredictor, Spectrum
from zav._library import LibraryOptions, library
from zav._models import models_folder

__version__ = _version("zav")

__all__ = [
    "PEAK_DTYPE",
    "CaughtAt",
    "Error",
    "ErrorCode",
    "FragmentPredictor",
    "InvalidInput",
    "LibraryOptions",
    "Limits",
    "LimitsDetector",
    "Spectrum",
    "Splits",
    "Splitter",
    "__version__",
    "library",
    "models_folder",
]
