// SPDX-License-Identifier: Apache-2.0
#include "Bindings.h"

NB_MODULE(_core, module)
{
    zav::python::bindFragments(module);
    zav::python::bindChromatograms(module);
}
