// SPDX-License-Identifier: Apache-2.0
#include "XmlTagStream.h"

#include <QtCore/QChar>

#include <algorithm>
#include <utility>

namespace zav {

namespace {

// No tag is this long, but a binary file may seem to hold one.
constexpr qsizetype MAX_MARKUP_BYTES = 1 << 20;

// What is recorded may hold the arrays of one chromatogram or spectrum: about ten million points.
constexpr std::size_t MAX_TEXT_BYTES = std::size_t{1} << 28;

// `&#x10FFFF;` and some zeros in front of its digits.
constexpr qsizetype LONGEST_ENTITY = 32;

constexpr char BYTE_ORDER_MARKS_OF_UTF16[][3] = {"\xFE\xFF", "\xFF\xFE"};

bool isTag(QByteArrayView markup)
{
    return markup.size() > 2 && markup[1] != '!' && markup[1] != '?';
}

qsizetype endBehind(QByteArrayView text, QByteArrayView closing)
{
    const qsizetype at = text.indexOf(closing);
    return at < 0 ? -1 : at + closing.size();
}

// A `>` may stand within the quotes of an attribute.
qsizetype tagSize(QByteArrayView text)
{
    char quote = 0;
    for (qsizetype i = 1; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0)
            quote = c == quote ? char{0} : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>')
            return i + 1;
    }
    return -1;
}

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

qsizetype skipSpace(QByteArrayView text, qsizetype at)
{
    while (at < text.size() && isSpace(text[at]))
        ++at;
    return at;
}

// The character that `&entity;` stands for, an empty text for an unknown one.
QString entityText(QStringView entity)
{
    constexpr struct
    {
        const char *name;
        char character;
    } NAMED[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto &named : NAMED) {
        if (entity == QLatin1String(named.name))
            return QString(QLatin1Char(named.character));
    }
    if (!entity.startsWith(QLatin1Char('#')))
        return {};
    const bool isHex = entity.size() > 1 && entity[1] == QLatin1Char('x');
    bool isNumber = false;
    const uint code = entity.sliced(isHex ? 2 : 1).toUInt(&isNumber, isHex ? 16 : 10);
    if (!isNumber || code == 0 || code > QChar::LastValidCodePoint)
        return {};
    const char32_t character = code;
    return QString::fromUcs4(&character, 1);
}

} // namespace

qsizetype xmlMarkupSize(QByteArrayView text)
{
    constexpr char COMMENT[] = "<!--";
    constexpr char CDATA[] = "<![CDATA[";
    if (text.startsWith(COMMENT))
        return endBehind(text, "-->");
    if (text.startsWith(CDATA))
        return endBehind(text, "]]>");
    // The start of either, cut short, looks like a declaration.
    if (QByteArrayView(COMMENT).startsWith(text) || QByteArrayView(CDATA).startsWith(text))
        return -1;
    return text.startsWith("<?") ? endBehind(text, "?>") : tagSize(text);
}

std::optional<QByteArrayView> xmlAttribute(QByteArrayView tag, QByteArrayView name)
{
    qsizetype at = 0;
    while (at < tag.size() && !isSpace(tag[at]))
        ++at;
    for (;;) {
        at = skipSpace(tag, at);
        const qsizetype equals = tag.indexOf('=', at);
        if (equals < 0)
            return std::nullopt;
        const qsizetype open = skipSpace(tag, equals + 1);
        if (open >= tag.size() || (tag[open] != '"' && tag[open] != '\''))
            return std::nullopt;
        const qsizetype close = tag.indexOf(tag[open], open + 1);
        if (close < 0)
            return std::nullopt;
        if (tag.sliced(at, equals - at).trimmed() == name)
            return tag.sliced(open + 1, close - open - 1);
        at = close + 1;
    }
}

bool isSoundXmlTag(QByteArrayView tag)
{
    if (tag.size() < 3 || !tag.startsWith('<') || !tag.endsWith('>'))
        return false;
    tag = tag.sliced(1).chopped(tag.endsWith("/>") ? 2 : 1);
    qsizetype at = 0;
    while (at < tag.size() && !isSpace(tag[at]))
        ++at;
    for (at = skipSpace(tag, at); at < tag.size(); at = skipSpace(tag, at)) {
        const qsizetype equals = tag.indexOf('=', at);
        if (equals <= at || tag.sliced(at, equals - at).trimmed().contains(' '))
            return false;
        const qsizetype open = skipSpace(tag, equals + 1);
        if (open >= tag.size() || (tag[open] != '"' && tag[open] != '\''))
            return false;
        const qsizetype close = tag.indexOf(tag[open], open + 1);
        if (close < 0 || tag.sliced(open, close - open).contains('<'))
            return false;
        at = close + 1;
        if (at < tag.size() && !isSpace(tag[at]))
            return false;
    }
    return true;
}

QString withoutXmlEntities(const QString &text)
{
    QString out;
    qsizetype at = 0;
    for (;;) {
        const qsizetype ampersand = text.indexOf(QLatin1Char('&'), at);
        if (ampersand < 0)
            return out + text.sliced(at);
        const QStringView entity =
            QStringView(text).sliced(ampersand, std::min(LONGEST_ENTITY, text.size() - ampersand));
        const qsizetype semicolon = entity.indexOf(QLatin1Char(';'));
        const QString character = semicolon < 0 ? QString() : entityText(entity.sliced(1, semicolon - 1));
        const qsizetype taken = ampersand + 1 + (character.isEmpty() ? 0 : semicolon);
        out += text.sliced(at, ampersand - at) + (character.isEmpty() ? QStringLiteral("&") : character);
        at = taken;
    }
}

XmlTagStream::XmlTagStream(std::unique_ptr<ByteStream> bytes) : m_bytes(std::move(bytes))
{
    for (const char *mark : BYTE_ORDER_MARKS_OF_UTF16) {
        if (m_bytes->peek().startsWith(QByteArrayView(mark)))
            m_error = failure(QStringLiteral("it is UTF-16; only UTF-8 and Latin-1 are read"));
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
            return fail(QStringLiteral("it holds an element of more than %1 bytes").arg(MAX_TEXT_BYTES));
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
            return fail(QStringLiteral("it is not XML: a tag has no end"));
        if (!refill())
            return false;
    }
}

bool XmlTagStream::refill()
{
    QByteArray piece;
    m_error = m_bytes->read(&piece);
    m_offset += m_at;
    m_buffer.remove(0, std::exchange(m_at, 0));
    m_buffer += piece;
    return !piece.isEmpty();
}

void XmlTagStream::readMarkup(qsizetype size)
{
    const QByteArrayView markup = QByteArrayView(m_buffer).sliced(m_at, size);
    m_tagOffset = m_offset + m_at;
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
    return value ? decoded(*value) : QString();
}

QString XmlTagStream::decoded(QByteArrayView value) const
{
    return withoutXmlEntities(m_isLatin1 ? QString::fromLatin1(value) : QString::fromUtf8(value));
}

Error XmlTagStream::seek(qint64 tagOffset)
{
    m_buffer.clear();
    m_offset = tagOffset;
    m_at = 0;
    m_tag = {};
    m_error = m_bytes->seek(tagOffset);
    return m_error;
}

Error XmlTagStream::failure(const QString &reason) const
{
    return cannotRead(name(), reason);
}

bool XmlTagStream::fail(const QString &reason)
{
    m_error = failure(reason);
    return false;
}

} // namespace zav
