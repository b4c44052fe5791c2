// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <optional>

namespace zav {

/// How long the markup at the front of `text`, which begins with `<`, is: a tag with its closing `>`, a comment, a
/// processing instruction, a CDATA section or a declaration. -1 where it goes on behind `text`.
qsizetype xmlMarkupSize(QByteArrayView text);

/// The value of a tag's attribute as it stands there; nothing where it has none of that name.
std::optional<QByteArrayView> xmlAttribute(QByteArrayView tag, QByteArrayView name);

/// The text with XML's five entities and its character references replaced; what is none of them stays.
QString withoutXmlEntities(const QString &text);

} // namespace zav
