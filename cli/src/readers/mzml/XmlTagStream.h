// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"

#include <QtCore/QByteArrayView>

#include <optional>
#include <string>

namespace zav {

/// How long the markup at the front of `text`, which begins with `<`, is: a tag with its closing `>`, a comment, a
/// processing instruction, a CDATA section or a declaration. -1 where it goes on behind `text`.
qsizetype xmlMarkupSize(QByteArrayView text);

/// The value of a tag's attribute as it stands there; nothing where it has none of that name.
std::optional<QByteArrayView> xmlAttribute(QByteArrayView tag, QByteArrayView name);

/// Whether a start or end tag is a name and attributes `name="value"`, no more: ProteoWizard writes behind the end of
/// its memory where a quote is missing.
bool isSoundXmlTag(QByteArrayView tag);

/// The text with XML's five entities and its character references replaced; what is none of them stays.
QString withoutXmlEntities(const QString &text);

/// The tags of an XML file from first to last, in the memory of a few tags. Comments, processing instructions and the
/// like are passed over. It finds tags and no more: whether they nest is for the caller to judge.
class XmlTagStream
{
public:
    explicit XmlTagStream(std::unique_ptr<ByteStream> bytes);

    /// Moves to the next tag; false at the end and after a failure, which `error` tells apart.
    ///
    /// Where `text` is not null, what stands in front of the tag since the last one is appended to it.
    bool next(std::string *text = nullptr);

    QString name() const { return m_bytes->name(); }
    Error error() const { return m_error; }

    QByteArrayView tag() const { return m_tag; }         ///< `<scan id="1">` whole; lasts until `next`
    QByteArrayView tagName() const { return m_tagName; } ///< `scan`; lasts until `next`
    bool isEnd() const;                                  ///< `</scan>`
    bool isEmpty() const;                                ///< `<scan/>`: both start and end

    /// The value of the tag's attribute, without entities, in the file's encoding read as UTF-8 or Latin-1; null where
    /// it has none of that name.
    QString attribute(QByteArrayView name) const;

    /// The value of an attribute likewise, as it stands in the file.
    QString decoded(QByteArrayView value) const;

    /// Where the tag begins, in bytes of the text; and back to such a place.
    qint64 tagOffset() const { return m_tagOffset; }
    Error seek(qint64 tagOffset);

    Error failure(const QString &reason) const; ///< that the file cannot be read

private:
    bool findTag(std::string *text);
    bool takeMarkup(qsizetype *size);
    bool refill();
    void readMarkup(qsizetype size);
    bool fail(const QString &reason);

    std::unique_ptr<ByteStream> m_bytes;
    QByteArray m_buffer;
    qint64 m_offset = 0; // of the buffer in the text
    qsizetype m_at = 0;  // of what is not taken yet
    qint64 m_tagOffset = 0;
    QByteArrayView m_tag;
    QByteArrayView m_tagName;
    bool m_isLatin1 = false;
    Error m_error;
};

} // namespace zav
