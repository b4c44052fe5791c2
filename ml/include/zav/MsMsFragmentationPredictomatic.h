// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>
#include <zav/FragmentPeak.h>
#include <zav/Result.h>
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <vector>

namespace zav {

/// Predicts the MS/MS fragment spectrum of a peptide, with one trained network per precursor charge from 1 to 5.
///
/// Peptides are upper-case one-letter sequences, N-terminus first. Characters are used as they stand: one that is not
/// among the 20 standard residues is shown to the network as an unknown residue and weighs nothing. The only
/// modification is the fixed mass on every cysteine.
///
/// m/z is in Da per elementary charge. Intensities are relative, in the network's own scale (for the shipped networks
/// the base peak is 1).
///
/// A call that runs out of memory returns `Failure` "Out of memory"; the object can be used as after any other failure
/// of that call. TensorFlow itself ends the process when it gets no memory.
///
/// One thread at a time per object; separate objects are independent and may be used in parallel.
class ZAV_ML_EXPORT MsMsFragmentationPredictomatic
{
public:
    /// Loads nothing; cysteine is carbamidomethylated (+57.02146 Da).
    MsMsFragmentationPredictomatic();
    ~MsMsFragmentationPredictomatic();

    MsMsFragmentationPredictomatic(const MsMsFragmentationPredictomatic &) = delete;
    MsMsFragmentationPredictomatic &operator=(const MsMsFragmentationPredictomatic &) = delete;

    /// Loads the networks for precursor charges 1 to 5, in that order. Paths are used as they stand.
    ///
    /// Stops at the first that fails and returns its error; those before it stay loaded and usable. A repeated call
    /// replaces the networks it reaches.
    ///
    /// `Error(Failure)`, its trail naming the network by its place: the TensorFlow runtime is missing (the message says
    /// what was looked for and where), or the file cannot be read, is no graph or has no operation "init" (told on
    /// standard error or as a critical message of the category "zav.ml").
    ///
    /// The first call of a process opens the runtime, 0.3 to 1.4 s; a network takes some 10 ms.
    Error init(const QString &modelPath1, QString modelPath2, QString modelPath3, QString modelPath4,
               QString modelPath5);

    /// True when at least one network is loaded.
    bool isInit() const;

    /// The largest precursor charge with a loaded network; 0 when there is none.
    int maxPredictionChargeState() const;

    /// The longest peptide, in residues, that is predicted for a precursor charge (27, 43, 50, 52, 50 for 1 to 5);
    /// 0 for any other charge. Independent of `init`.
    int getMaximumPeptideLengthForCharge(int charge);

    /// Sets the mass in Da added to every cysteine of later predictions. Any value is taken as it stands.
    void setCysteineFixedMass(double mass);

    /// Predicts one spectrum: the fragments and their isotope peaks as (m/z, intensity), sorted by ascending m/z,
    /// without peaks over 2000 m/z or under an intensity of 0.025. Peaks of equal m/z stand in the order of the
    /// network's ions. A fragment of no mass, as of unknown residues alone, has no isotope peaks; one of negative m/z
    /// is left out. One network run.
    ///
    /// `out` is replaced on success only. A peptide longer than the charge allows, which every peptide with a residue
    /// is at a charge outside 1 to 5, is not an error: nothing is predicted and `out` stays as it was.
    ///
    /// `Error(Failure)`: the network of the charge is not loaded, or it does not fit its contract (operations
    /// "import/conv1d_1_input" and "import/dense_3/BiasAdd", float, one intensity per slot of the fragment ladder).
    /// `Error(InvalidInput)`: the mass of a fragment is above 1e6 Da or, as with such a mass of cysteine, not finite; a
    /// null `out`.
    Error predictMsMsFragmentation(const QString &peptide, int charge, QList<QPointF> *out);

    /// Predicts the fragments of many peptides of one precursor charge, each peak named after its fragment.
    ///
    /// With `IsotopePeaks::Included` a peptide has the peaks that `predictMsMsFragmentation` gives it, in the same
    /// order, m/z alike, intensities to float rounding; a peak within that rounding of the lowest intensity may be in
    /// one of the two alone. With `LeftOut` it has those whose `isotope` is 0.
    ///
    /// `out` is replaced on success only, by one list per peptide in their order. A peptide longer than the charge
    /// allows, or one with a fragment whose mass is not finite or above 1e6 Da, gets an empty list and a warning on the
    /// returned (no-error) `Error`.
    ///
    /// `Error(Failure)`: the charge has no loaded network, or the network does not fit its contract.
    /// `Error(InvalidInput)`: a null `out`.
    ///
    /// The network runs once per block of 128 peptides of similar length, so that each costs a fraction of a single
    /// call; a network that is built for a fixed number of peptides, of which that number must be one, runs once for
    /// each. Beyond `out` (64 bytes per peak) the call needs memory for one block.
    Error predictFragments(const QStringList &peptides, int charge, QList<QList<FragmentPeak>> *out,
                           IsotopePeaks isotopes = IsotopePeaks::LeftOut);

private:
    friend class MsMsFragmentationPredictomaticInspector; // the unit tests' view of the steps below

    class Private;
    struct Fragment;

    Result<QList<QPointF>> buildSpectrum(const QString &peptide, int charge, const std::vector<float> &predictions);
    QList<Fragment> buildMzPoints(const QString &peptide, int charge);
    void addFragmentIonToMzPoints(double startMass, int count, const QString &peptide, int charge, QChar ionType,
                                  const QString &neutralLoss, QList<Fragment> *out);
    Result<QList<QPointF>> buildPoints(const QList<Fragment> &fragments, const std::vector<float> &predictions);
    Result<QList<QPointF>> addIsotopesToFragments(const QPointF &point, int charge);

    std::unique_ptr<Private> d;
    TheoreticalIsotopePoint2dListGenerator isotopeGenerator;
    double cysteineFixedMass = 57.02146;
};

} // namespace zav
