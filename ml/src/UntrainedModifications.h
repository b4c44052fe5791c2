// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Peptidoform.h>

#include <QtCore/QChar>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <set>
#include <utility>

namespace zav {

/// Notices the modifications that a network's training data did not hold. A network still predicts them from their
/// composition, often wrongly: a user has to know.
class UntrainedModifications
{
public:
    /// `trained` names each modification of the training data and its place: "Oxidation@M", "Acetyl@N-term",
    /// "Amidated@C-term". "C" alone: cysteines without a modification.
    explicit UntrainedModifications(const QStringList &trained);

    void look(const Peptidoform &peptidoform);

    /// "Modification TMT6plex at K is unknown to the network" for all that was looked at, each once, in the order of
    /// first appearance.
    const QStringList &remarks() const { return m_remarks; }

private:
    using Place = std::pair<QString, QChar>; // name of the modification, residue or terminus

    void lookAt(const QString &name, QChar site);

    std::set<Place> m_known; // and those remarked upon; QSet ends the process when it gets no memory
    QStringList m_remarks;
};

} // namespace zav
