// SPDX-License-Identifier: Apache-2.0
//
// Stands in for the pictures in a build without Qt Gui and Qt Svg.
#include "PictureFile.h"

namespace zav {

bool canWritePictures()
{
    return false;
}

Error writePicture(const Picture &, const QString &path)
{
    return Error(Failure,
                 path + QStringLiteral(": this zav was built without Qt Gui and Qt Svg and draws no pictures"));
}

} // namespace zav
