// SPDX-License-Identifier: Apache-2.0
#include "MzMlArrays.h"

namespace zav {

QString unitText(pwiz::cv::CVID unit)
{
    switch (unit) {
    case pwiz::cv::CVID_Unknown:
        return {};
    case pwiz::cv::UO_minute:
        return QStringLiteral("min");
    case pwiz::cv::UO_second:
        return QStringLiteral("s");
    case pwiz::cv::UO_millisecond:
        return QStringLiteral("ms");
    case pwiz::cv::UO_hour:
        return QStringLiteral("h");
    case pwiz::cv::MS_number_of_detector_counts:
        return QStringLiteral("counts");
    default:
        return QString::fromStdString(pwiz::cv::cvTermInfo(unit).name);
    }
}

} // namespace zav
