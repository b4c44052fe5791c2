# SPDX-License-Identifier: Apache-2.0
"""The network of the spectra of modified peptides, at any charge and collision energy."""
