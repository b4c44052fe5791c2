// SPDX-License-Identifier: Apache-2.0
#include "XmlTagStream.h"

#include "XmlText.h"

#include <utility>

namespace zav {

namespace {

// No tag has this length; a binary file may look as if.
constexpr qsizetype MAX_MARKUP_BYTES = 1 << 20;

// What is recorded may hold the arrays of one chromatogram or spectrum.
constexpr std::size_t MAX_TEXT_BYTES = std::size_t{1} << 30;

constexpr char BYTE_ORDER_MARKS_OF_UTF16[][3] = {"\xFE\xFF", "\xFF\xFE"};

bool isTag(QByteArrayView markup)
{
    return markup.size() > 2 && markup[1] != '!' && markup[1] != '?';
}

} // namespace

XmlTagStream::XmlTagStream(std::unique_ptr<ByteStream> bytes) : m_bytes(std::move(bytes))
{
    for (const char *mark : BYTE_ORDER_MARKS_OF_UTF16) {
        if (m_bytes->peek().startsWith(QByteArrayView(mark)))
            m_error = errorHere(QStringLiteral("is UTF-16; only UTF-8 and Latin-1 are read"));
    }
}

bool XmlTagStream::next(std::string *text)
{
    m_tag = {};
    for (;;) {
        qsizetype size = 0;
        if (m_error.hasError() || !findTag(text) || !takeMarkup(&size))
            return false;
        readMarkup(size);
        if (!m_tag.isEmpty())
            return true;
    }
}

// Moves to the next `<`.
bool XmlTagStream::findTag(std::string *text)
{
    for (;;) {
        const qsizetype found = m_buffer.indexOf('<', m_at);
        const qsizetype end = found < 0 ? m_buffer.size() : found;
        if (text != nullptr)
            text->append(m_buffer.constData() + m_at, static_cast<std::size_t>(end - m_at));
        if (text != nullptr && text->size() > MAX_TEXT_BYTES)
            return fail(QStringLiteral("holds an element of more than %1 bytes").arg(MAX_TEXT_BYTES));
        m_at = end;
        if (found >= 0)
            return true;
        if (!refill())
            return false;
    }
}

// How long the markup at the `<` is; it is in the buffer then.
bool XmlTagStream::takeMarkup(qsizetype *size)
{
    for (;;) {
        *size = xmlMarkupSize(QByteArrayView(m_buffer).sliced(m_at));
        if (*size >= 0)
            return true;
        if (m_buffer.size() - m_at > MAX_MARKUP_BYTES)
            return fail(QStringLiteral("is not XML: a tag has no end"));
        if (!refill())
            return false;
    }
}

bool XmlTagStream::refill()
{
    QByteArray piece;
    m_error = m_bytes->read(&piece);
    m_buffer.remove(0, std::exchange(m_at, 0));
    m_buffer += piece;
    return !piece.isEmpty();
}

void XmlTagStream::readMarkup(qsizetype size)
{
    const QByteArrayView markup = QByteArrayView(m_buffer).sliced(m_at, size);
    m_at += size;
    if (markup.startsWith("<?xml ")) {
        const QByteArrayView encoding = xmlAttribute(markup, "encoding").value_or("UTF-8");
        m_isLatin1 = encoding.compare("UTF-8", Qt::CaseInsensitive) != 0;
    }
    if (!isTag(markup))
        return;
    m_tag = markup;
    m_tagName = markup.sliced(isEnd() ? 2 : 1);
    qsizetype length = 0;
    while (length < m_tagName.size() && !QByteArrayView(" \t\r\n/>").contains(m_tagName[length]))
        ++length;
    m_tagName = m_tagName.first(length);
}

bool XmlTagStream::isEnd() const
{
    return m_tag.startsWith("</");
}

bool XmlTagStream::isEmpty() const
{
    return m_tag.endsWith("/>");
}

QString XmlTagStream::attribute(QByteArrayView name) const
{
    const std::optional<QByteArrayView> value = xmlAttribute(m_tag, name);
    if (!value)
        return {};
    return withoutXmlEntities(m_isLatin1 ? QString::fromLatin1(*value) : QString::fromUtf8(*value));
}

Error XmlTagStream::errorHere(const QString &what) const
{
    return {Failure, name() + QStringLiteral(": ") + what};
}

bool XmlTagStream::fail(const QString &what)
{
    m_error = errorHere(what);
    return false;
}

} // namespace zav
