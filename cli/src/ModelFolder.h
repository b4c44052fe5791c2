// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QString>

namespace zav {

/// A folder of networks: `msms_charge1.pb` to `msms_charge5.pb`, each with its contract of the same name, `.json`.
class ModelFolder
{
public:
    explicit ModelFolder(const QString &path) : m_path(path) {}

    /// The folder that the user named, or where the networks are installed: beside the running program, in the build
    /// folder or the prefix. `Failure` when it is no folder or holds no fragmentation network; says where was looked.
    static Result<ModelFolder> find(const QString &asked);

    QString path() const { return m_path; }

    /// The path of the fragmentation network for a precursor charge, whether or not the file is there.
    QString fragmentationNetwork(int charge) const;

    /// No error when the network's file is there and can be read.
    Error checkFragmentationNetwork(int charge) const;

private:
    bool hasFragmentationNetworks() const;

    QString m_path;
};

/// Where the networks stand when the user names no folder, relative to the running program. Needs the application
/// object.
QString installedModelFolder();

} // namespace zav
