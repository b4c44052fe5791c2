# SPDX-License-Identifier: Apache-2.0
"""The network of retention times."""
