// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>

#include <new>
#include <utility>

namespace zav {

// Qt (6.4) does not look whether it got memory for a list of a given size or for the copy of a shared one, and writes
// there. These throw std::bad_alloc instead, as appending does.

/// An empty list that holds `capacity` values without further memory.
template <typename T>
QList<T> listWithRoom(qsizetype capacity)
{
    QList<T> list;
    list.reserve(capacity);
    return list.capacity() < capacity ? throw std::bad_alloc() : list;
}

/// A list of `size` default values.
template <typename T>
QList<T> listOf(qsizetype size)
{
    QList<T> list = listWithRoom<T>(size);
    list.resize(size);
    return list;
}

/// A list of `size` times a value.
template <typename T>
QList<T> listOf(qsizetype size, const T &value)
{
    QList<T> list = listOf<T>(size);
    list.fill(value);
    return list;
}

/// Makes a list the only owner of its values, so that they can be changed without further memory.
template <typename T>
void makeOwner(QList<T> *list)
{
    if (list->isDetached())
        return;
    QList<T> own = listWithRoom<T>(list->size());
    own.append(*list);
    *list = std::move(own);
}

} // namespace zav
