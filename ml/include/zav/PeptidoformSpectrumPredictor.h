// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>
#include <zav/FragmentPeak.h>
#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <limits>
#include <memory>

namespace zav {

/// A peptidoform as it is selected and fragmented.
struct PeptidoformPrecursor
{
    Peptidoform peptidoform;
    int charge = 2; ///< 1 to 6

    /// Normalised collision energy of HCD as on Lumos and Q Exactive instruments, 10 to 60. NaN stands for unknown: the
    /// network then predicts at its default, 30.
    double collisionEnergy = std::numeric_limits<double>::quiet_NaN();
};

/// Predicts the MS/MS fragment spectrum of a peptide with modifications, at any charge from 1 to 6 and at a chosen
/// collision energy, with one trained network.
///
/// A peptidoform says all that is changed about its residues: cysteine without modification is free cysteine, which no
/// training spectrum held. `MsMsFragmentationPredictomatic`, in contrast, adds a mass to every cysteine.
///
/// m/z is in Da per elementary charge, from exact masses. Intensities are relative: the base peak is 1.
///
/// A call that runs out of memory returns `Failure` "Out of memory"; the object can be used as after any other failure
/// of that call. TensorFlow itself ends the process when it gets no memory.
///
/// One thread at a time per object; separate objects are independent and may be used in parallel.
class ZAV_ML_EXPORT PeptidoformSpectrumPredictor
{
public:
    static constexpr int LONGEST_PEPTIDE = 52;             ///< residues; the shortest has 2
    static constexpr int HIGHEST_CHARGE = 6;               ///< of a precursor; the lowest is 1
    static constexpr double DEFAULT_COLLISION_ENERGY = 30; ///< normalised
    static constexpr double LOWEST_COLLISION_ENERGY = 10;  ///< that is taken
    static constexpr double HIGHEST_COLLISION_ENERGY = 60; ///< that is taken

    /// Loads nothing.
    PeptidoformSpectrumPredictor();
    ~PeptidoformSpectrumPredictor();

    PeptidoformSpectrumPredictor(const PeptidoformSpectrumPredictor &) = delete;
    PeptidoformSpectrumPredictor &operator=(const PeptidoformSpectrumPredictor &) = delete;

    /// Loads the network. The path is used as it stands. A repeated call replaces the network, or leaves it as it was
    /// where the call fails.
    ///
    /// `Error(Failure)`: the TensorFlow runtime is missing (the message says what was looked for and where), or the
    /// file cannot be read, is no graph or has no operation "init" (told on standard error or as a critical message of
    /// the category "zav.ml").
    Error init(const QString &networkPath);

    /// True once a network is loaded.
    bool isInit() const;

    /// Predicts one spectrum per precursor, each peak named after its fragment, sorted by ascending m/z.
    ///
    /// A spectrum holds y and b ions of up to three charges, but no more than the precursor has, singly charged a ions
    /// of up to 15 residues, and losses: of water and ammonia from singly charged y and b ions; of "-H3PO4", "-2H3PO4",
    /// "-CH4OS" and "-CO2" from y and b ions of up to two charges that hold the modified residue which loses it. Peaks
    /// over 2000 m/z or under 0.04 of the base peak are left out. `IsotopePeaks::Included` adds the isotope peaks of
    /// these fragments, those under 2000 m/z and from 0.025 on; their heights are those of an average peptide.
    ///
    /// Collision energies from 20 to 35 are those of the training spectra; others are extrapolated.
    ///
    /// `out` is replaced on success only, by one list per precursor in their order. Warnings on the returned (no-error)
    /// `Error` name each precursor that cannot be read and gets an empty list: one whose peptide is shorter than 2 or
    /// longer than 52 residues, has a letter that is not among the 20 standard residues or a mass that is not finite,
    /// or whose charge is not from 1 to 6. They also name, once each, modifications that no training spectrum held, and
    /// free cysteine. Masses are right then, intensities a guess.
    ///
    /// `Error(Failure)`: no network is loaded, or it does not fit its contract (inputs "peptidoforms" and "precursors",
    /// output "intensities", float).
    /// `Error(InvalidInput)`: a collision energy that is neither NaN nor from 10 to 60; a null `out`.
    ///
    /// The network runs once per block of precursors of similar length. Precursors next to each other of one
    /// peptidoform share the larger part of the work, so that further charges and energies of it cost little. Beyond
    /// `out` (64 bytes per peak) the call needs memory for one block.
    Error predict(const QList<PeptidoformPrecursor> &precursors, QList<QList<FragmentPeak>> *out,
                  IsotopePeaks isotopes = IsotopePeaks::LeftOut);

private:
    class Private;

    std::unique_ptr<Private> d;
};

} // namespace zav
