// SPDX-License-Identifier: Apache-2.0
#include "ReportFile.h"

#include <nlohmann/json.hpp>

#include <QtCore/QtEndian>

#include <utility>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

constexpr qsizetype BLOCK_SIZE = 1 << 18; // bytes of rows or of what pictures need

QByteArray textOf(const Json &value)
{
    return QByteArray::fromStdString(value.dump());
}

} // namespace

ReportFile::ReportFile(const QString &path, ReportKind kind, const Json &heading)
    : m_kind(kind), m_heading(textOf(heading)), m_file(path)
{}

Error ReportFile::open()
{
    if (m_isOpen)
        return {};
    if (Error error = m_file.open(); error.hasError())
        return error;
    m_isOpen = true;
    return m_file.write(ReportPage::opening(m_kind) + jsonElement("heading", m_heading));
}

Error ReportFile::add(Json entry, const QByteArray &bytes)
{
    if (Error error = open(); error.hasError())
        return error;
    entry["at"] = m_bytes.size();
    m_rows += (m_rows.isEmpty() ? "" : ",\n") + textOf(entry);
    m_bytes += bytes;
    return m_rows.size() < BLOCK_SIZE && m_bytes.size() < BLOCK_SIZE ? Error() : endBlock();
}

Error ReportFile::endBlock()
{
    if (m_rows.isEmpty())
        return {};
    m_digest.add(m_rows);
    m_digest.add(m_bytes);
    const QByteArray block = jsonElement("rows", "[\n" + m_rows + "\n]") + bytesElement("points", m_bytes);
    m_rows.clear();
    m_bytes.clear();
    return m_file.write(block);
}

Error ReportFile::finish()
{
    if (!m_isOpen)
        return {};
    if (Error error = endBlock(); error.hasError())
        return error;
    const Json ending = {{"digest", m_digest.result().toStdString()}};
    if (Error error = m_file.write(jsonElement("ending", textOf(ending)) + ReportPage::closing(m_kind));
        error.hasError())
        return error;
    return m_file.commit();
}

QByteArray packedJson(const Json &value)
{
    const QByteArray text = textOf(value);
    const quint32 size = qToLittleEndian(static_cast<quint32>(text.size()));
    return QByteArray(reinterpret_cast<const char *>(&size), sizeof size) + text;
}

Json jsonText(const QString &text)
{
    return text.toStdString();
}

Json jsonTexts(const QStringList &texts)
{
    Json array = Json::array();
    for (const QString &text : texts)
        array.push_back(jsonText(text));
    return array;
}

} // namespace zav
