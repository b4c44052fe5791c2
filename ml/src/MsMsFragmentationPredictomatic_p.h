// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <QtCore/QMap>

namespace zav {

/// Lines in the trails of this class's errors, each standing for a step. Hosts read them: they stay as they are.
namespace fragmentationTrail {

inline constexpr int NETWORK_OF_CHARGE[]{58, 62, 66, 70, 74}; // loading that of precursor charge 1, 2 ...
inline constexpr int NETWORKS = 123;                          // loading all of them
inline constexpr int GRAPH_INPUT = 213;                       // binding the input
inline constexpr int GRAPH_OUTPUT = 215;                      // binding the output
inline constexpr int NETWORK_RESULT = 221;                    // reading the intensities
inline constexpr int SPECTRUM = 230;                          // pairing them with the ladder
inline constexpr int INTENSITY_COUNT = 256;                   // one intensity for each slot of the ladder
inline constexpr int FRAGMENT_ISOTOPES = 274;                 // the isotope peaks of a fragment
inline constexpr int ISOTOPE_ENVELOPE = 440;                  // the envelope that they are taken from

} // namespace fragmentationTrail

/// One slot of the fragment ladder. The defaults are those of a placeholder: a slot beyond the end of the peptide,
/// which keeps the ladder in step with the network's output.
struct MsMsFragmentationPredictomatic::Fragment
{
    double mz = -1.0;    ///< m/z
    int charge = 0;      ///< 1, 2 or 3
    QChar ionType;       ///< 'y', 'b' or 'a'
    int ionNumber = -1;  ///< residues in the fragment
    QString neutralLoss; ///< "-H2O", "-NH3" or empty
};

class MsMsFragmentationPredictomatic::Private
{
public:
    Private() = default;
    ~Private();

    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    Error init(const QString &modelPath1, QString modelPath2, QString modelPath3, QString modelPath4,
               QString modelPath5);

    /// The network of a precursor charge, or why there is none.
    Result<Model *> model(int charge) const;

    QMap<int, Model *> models; ///< by precursor charge; owned
};

} // namespace zav
