# SPDX-License-Identifier: Apache-2.0
"""Makes the networks that the library ships: data, training, export, evaluation."""
