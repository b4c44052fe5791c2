// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// What the networks of a folder are for.
enum class NetworkUse {
    Fragmentation,  ///< the spectra of peptides, one network a charge
    Peptidoforms,   ///< the spectra of peptides with modifications, at any charge and energy
    RetentionTimes, ///< when peptides elute
    PeakLimits,     ///< where the peaks of chromatograms start and end
    PeakSplits      ///< where they are to be split
};

/// Which networks a user asked for.
struct NetworkChoice
{
    QString folder;       ///< empty: where the networks are installed
    bool trusted = false; ///< to be loaded unchecked, see `checkNetwork`
};

/// A folder of networks: `msms_charge1.pb` to `msms_charge5.pb`, `peptidoform_spectrum.pb`, `retention_time.pb`,
/// `xic_limits.pb` and `xic_split.pb`, each with its contract of the same name, `.json`.
class ModelFolder
{
public:
    explicit ModelFolder(const QString &path, bool trusted = false) : m_path(path), m_isTrusted(trusted) {}

    /// The folder that the user named or, where none is named, that of the installed networks: its place relative to
    /// the running program is the same in the build folder and in a prefix. `Failure` when it is no folder or holds no
    /// network for that use; the message says where they were looked for. Needs the application object.
    static Result<ModelFolder> find(const NetworkChoice &asked, NetworkUse use = NetworkUse::Fragmentation);

    /// The same folder, not looked into. Needs the application object.
    static QString pathFor(const QString &asked);

    QString path() const { return m_path; }

    /// The path of the fragmentation network for a precursor charge, whether or not the file is there.
    QString fragmentationNetwork(int charge) const;

    /// The path of the network for that use, whether or not the file is there. Not for `Fragmentation`.
    QString network(NetworkUse use) const;

    /// Five paths for the predictor's `init`, which needs a network for every charge. A charge that is not among
    /// `charges` (one at least) gets the path of the first that is.
    QStringList fragmentationNetworks(const QList<int> &charges) const;

    /// No error when the network's file is there, can be read and passes `zav::checkNetwork` or is trusted.
    Error checkFragmentationNetwork(int charge) const;
    Error checkNetwork(NetworkUse use) const; ///< not for `Fragmentation`

private:
    Error checkFile(const QString &path) const;
    bool hasFragmentationNetworks() const;
    bool holds(NetworkUse use) const;

    QString m_path;
    bool m_isTrusted = false;
};

} // namespace zav
