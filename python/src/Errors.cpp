// SPDX-License-Identifier: Apache-2.0
#include "Errors.h"

#include <nanobind/nanobind.h>
#include <nanobind/stl/string.h>

namespace nb = nanobind;

namespace zav::python {

namespace {

nb::list trailOf(const Error &error)
{
    nb::list trail;
    for (const CaughtAt &place : error.trail())
        trail.append(nb::make_tuple(place.functionSignature.toStdString(), place.sourceFile.toStdString(), place.line));
    return trail;
}

} // namespace

void raise(const Error &error)
{
    const nb::object exception =
        nb::module_::import_("zav._errors")
            .attr("from_core")(static_cast<int>(error.code()), error.message().toStdString(), trailOf(error));
    PyErr_SetObject(reinterpret_cast<PyObject *>(Py_TYPE(exception.ptr())), exception.ptr());
    throw nb::python_error();
}

void raiseIfError(const Error &error)
{
    if (error.hasError())
        raise(error);
    if (error.hasWarnings())
        raise(Error(InvalidInput, error.warnings().first()));
}

} // namespace zav::python
