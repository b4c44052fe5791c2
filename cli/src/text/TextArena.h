// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>

#include <vector>

namespace zav {

/// Keeps many short texts in few large pieces of memory. The entries of a library are made in one thread and freed in
/// another, ten thousands at a time; one by one that costs more than their making.
class TextArena
{
public:
    /// A copy of the text, which is valid as long as the arena, also after that was moved.
    QByteArray keep(const QByteArray &text);

private:
    std::vector<QByteArray> m_chunks;
};

} // namespace zav
