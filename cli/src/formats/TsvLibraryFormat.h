// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryFormat.h"

namespace zav {

/// The transition list of OpenSWATH (TransitionTSVFile of OpenMS, https://openms.de) with the columns that DIA-NN
/// wants besides (https://github.com/vdemichev/DiaNN, README): a row a fragment.
///
/// `NormalizedRetentionTime` is required by both and holds 0: no retention time is predicted. Intensities are relative
/// to 1. Cysteines stand as `C(UniMod:4)`, with a mass of no common reagent as `C[+12.345000]`. Only monoisotopic b
/// and y ions have rows: DIA-NN takes an a for a b, both take a second isotope of an ion for the ion itself. The
/// neutral loss stands in `FragmentLossType` for DIA-NN and within `Annotation` for OpenMS, gene symbols in `Genes`
/// for the one and in `GeneName` for the other. Several proteins or genes are listed with `;`.
class TsvLibraryFormat : public LibraryFormat
{
public:
    QByteArray opening(const LibraryInfo &info) const override;
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

} // namespace zav
