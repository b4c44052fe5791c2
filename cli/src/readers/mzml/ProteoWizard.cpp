// SPDX-License-Identifier: Apache-2.0
#include "ProteoWizard.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

namespace zav {

Error checkFile(const QString &path)
{
    QFile file(path);
    if (QFileInfo(path).isDir())
        return {Failure, path + QStringLiteral(": is a folder")};
    if (!file.open(QIODevice::ReadOnly))
        return {Failure, path + QStringLiteral(": cannot be read: ") + file.errorString()};
    return file.size() > 0 ? Error() : Error(Failure, path + QStringLiteral(": is empty"));
}

QString plainMessage(const char *what)
{
    static const QRegularExpression place(QStringLiteral("^\\[[^\\]]*\\]:? *|\\bAt position \\d+: *| at offset \\d+\\b"
                                                         "|\\b\\w+(?:::\\w+)+:? *|\\.$"));
    const QString message = QString::fromUtf8(what).simplified();
    const QString plain = QString(message).remove(place);
    return plain.isEmpty() ? message : plain;
}

} // namespace zav
