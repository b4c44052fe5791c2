// SPDX-License-Identifier: Apache-2.0
#include "ProteoWizard.h"

#include <QtCore/QRegularExpression>

namespace zav {

QString plainMessage(const char *what)
{
    static const QRegularExpression place(QStringLiteral("^\\[[^\\]]*\\]:? *|\\bAt position \\d+: *| at offset \\d+\\b"
                                                         "|\\b\\w+(?:::\\w+)+:? *|\\.$"));
    const QString message = QString::fromUtf8(what).simplified();
    const QString plain = QString(message).remove(place);
    return plain.isEmpty() ? message : plain;
}

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
