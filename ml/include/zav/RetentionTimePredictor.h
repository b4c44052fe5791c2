// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>
#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// Predicts when peptides elute from a reversed-phase column, with a trained network.
///
/// Times are indexed retention times (iRT): numbers without a unit on the scale of Escher et al., Proteomics 12, 1111
/// (2012), which is fixed by eleven synthetic peptides. A straight line, or better a `RetentionTimeCalibration`, turns
/// them into the minutes of a gradient. The peptides, with the iRT that the kit of that paper is sold with:
///
///     LGGNEQVTR       -24.92        DGLDAASYYAPVR    42.26
///     GAGSSEPVTGLDAK    0.00        ADVTPADFSEWSK    54.62
///     VEATFGVDESNAK    12.39        GTFIIDPGGVIR     70.52
///     YILAGVENSK       19.79        GTFIIDPAAVIR     87.23
///     TPVISGGPYEYR     28.71        LFLQFGAQGSPFLK  100.00
///     TPVITGAPYEYR     33.38
///
/// Peptidoforms of 2 to 52 of the 20 standard residues are predicted. All cysteines of the training data carried a
/// modification: a plain "ACDK" is predicted as the free cysteine that it is, which the network has not seen.
///
/// A call that runs out of memory returns `Failure` "Out of memory"; the object can be used as after any other failure
/// of that call. TensorFlow itself ends the process when it gets no memory.
///
/// One thread at a time per object; separate objects are independent and may be used in parallel.
class ZAV_ML_EXPORT RetentionTimePredictor
{
public:
    /// Loads nothing: predictions fail with `Failure` until an `init` has succeeded.
    RetentionTimePredictor();
    ~RetentionTimePredictor();

    RetentionTimePredictor(const RetentionTimePredictor &) = delete;
    RetentionTimePredictor &operator=(const RetentionTimePredictor &) = delete;

    /// Loads the network, in place of one that was loaded before; after a failure there is none.
    ///
    /// `Failure`: the TensorFlow runtime is missing (the message says what was looked for and where), or the file
    /// cannot be read, is no graph or has no operation "init" (told on standard error or as a critical message of the
    /// category "zav.ml"), or it does not fit its contract: operations "peptidoforms", float [-1, 52, 13], and
    /// "retention_times".
    Error init(const QString &networkPath);

    /// True once a network is loaded.
    bool isInit() const;

    /// The iRT of each peptidoform, in their order.
    ///
    /// One that cannot be predicted gets NaN and a warning that names it, on the returned (no-error) `Error`; these
    /// warnings come first, in the order of the peptidoforms. Each modification that the training data did not hold
    /// gets one too, once for a residue: "Modification TMT6plex at K is unknown to the network". What is predicted for
    /// it from its composition may be far off. A prediction does not depend on the other peptidoforms, but for float
    /// rounding (0.01).
    ///
    /// `out` is replaced on success only. `Failure`: no network is loaded, or it does not fit its contract.
    /// `InvalidInput`: a null `out`.
    ///
    /// The network runs once per block of 256 peptidoforms of similar length: a long list costs some tens of
    /// microseconds each, a peptidoform that is asked for alone a run of the network.
    Error predict(const QList<Peptidoform> &peptidoforms, QList<double> *out);

    /// All outputs of the network for each peptidoform, in their order: the iRT, what it predicts for the other
    /// chromatographies of its training data, each brought to about the scale of the iRT, and directions in which yet
    /// another one may differ from their mean, each added to it. `RetentionTimeCalibration` mixes them. One that cannot
    /// be predicted gets an empty list. Otherwise as `predict`.
    Error predictHeads(const QList<Peptidoform> &peptidoforms, QList<QList<double>> *out);

private:
    friend class RetentionTimePredictorInspector; // the benchmarks' view of Private

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace zav
