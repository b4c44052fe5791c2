// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nanobind/nanobind.h>
#include <nanobind/ndarray.h>

#include <QtCore/QString>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zav::python {

/// Values as numpy has them in memory, of any stride, read where they are.
using Values = nanobind::ndarray<const double, nanobind::ndim<1>, nanobind::device::cpu>;

/// A new numpy array.
template <typename T>
using Array = nanobind::ndarray<nanobind::numpy, T, nanobind::ndim<1>>;

/// A numpy array that owns the bytes of these elements, as elements of type `T`.
template <typename T, typename Element>
Array<T> arrayOf(std::vector<Element> elements)
{
    auto *kept = new std::vector<Element>(std::move(elements));
    const nanobind::capsule owner(kept,
                                  [](void *memory) noexcept { delete static_cast<std::vector<Element> *>(memory); });
    return Array<T>(reinterpret_cast<T *>(kept->data()), {kept->size() * sizeof(Element) / sizeof(T)}, owner);
}

inline QString text(const std::string &utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

void bindFragments(nanobind::module_ &module);
void bindChromatograms(nanobind::module_ &module);

} // namespace zav::python
