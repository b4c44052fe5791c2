// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

#include <string>

namespace zav {

/// The default that the help shows for an option: the first text in brackets behind it, with the brackets.
inline QString defaultIn(const std::string &help, const char *option)
{
    const QString text = QString::fromStdString(help).simplified();
    const qsizetype at = text.indexOf(QString::fromUtf8(option));
    const qsizetype from = at < 0 ? -1 : text.indexOf('[', at);
    return from < 0 ? QString() : text.mid(from, text.indexOf(']', from) + 1 - from);
}

} // namespace zav
