// SPDX-License-Identifier: Apache-2.0
#include "XmlText.h"

#include <QtCore/QChar>

namespace zav {

namespace {

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
    // Cut short, either may look like a declaration.
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

QString withoutXmlEntities(const QString &text)
{
    QString out;
    qsizetype at = 0;
    for (;;) {
        const qsizetype ampersand = text.indexOf(QLatin1Char('&'), at);
        const qsizetype semicolon = ampersand < 0 ? -1 : text.indexOf(QLatin1Char(';'), ampersand);
        if (semicolon < 0)
            return out + text.sliced(at);
        const QString character = entityText(QStringView(text).sliced(ampersand + 1, semicolon - ampersand - 1));
        const qsizetype taken = character.isEmpty() ? ampersand + 1 : semicolon + 1;
        out += text.sliced(at, ampersand - at) + (character.isEmpty() ? QStringLiteral("&") : character);
        at = taken;
    }
}

} // namespace zav
