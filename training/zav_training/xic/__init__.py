# SPDX-License-Identifier: Apache-2.0
"""The two chromatogram networks: limits of peaks, and places where a peak is to be split."""
