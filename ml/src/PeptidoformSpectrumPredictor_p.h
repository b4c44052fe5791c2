// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/PeptidoformSpectrumPredictor.h>

#include <array>
#include <memory>

namespace zav {

/// What the peptidoform network and its predictor agree on, beside the rows of a peptidoform. The names and shapes
/// belong to the graph file.
namespace peptidoformNetwork {

/// Float, [-1, 3], for each precursor: the number of its peptidoform in the run, from 0; its charge; its collision
/// energy less 30, divided by 10, and 0 where that is unknown.
inline constexpr char PRECURSORS[] = "precursors";
inline constexpr int PRECURSOR_WIDTH = 3;
inline constexpr double ENERGY_UNIT = 10.0;

/// Float, [-1, bonds, 27]: for each precursor and each bond between two residues, N-terminus first, the intensities of
/// the ions that `peptidoformIons::series` lists. There are as many bonds as the longest peptidoform of the run has.
inline constexpr char INTENSITIES[] = "intensities";

/// The modifications of the training spectra, each with its place.
inline constexpr std::array TRAINED_MODIFICATIONS{
    "Carbamidomethyl@C",    "Phospho@S",           "Phospho@T", "Phospho@Y",
    "Oxidation@M",          "Acetyl@N-term",       "Acetyl@K",  "Deamidated@N",
    "Gln->pyro-Glu@N-term", "Ammonia-loss@N-term", "Malonyl@K"};

} // namespace peptidoformNetwork

class PeptidoformSpectrumPredictor::Private
{
public:
    std::unique_ptr<Model> model; ///< null until `init` has succeeded
};

} // namespace zav
