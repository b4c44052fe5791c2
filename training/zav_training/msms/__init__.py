# SPDX-License-Identifier: Apache-2.0
"""The five fragmentation networks, one for each precursor charge."""
