// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QRegularExpression>
#include <QtCore/QtEndian>

#include <cstring>

namespace zav {

/// What a report holds, read from its bytes as the page's script does.
struct ReportText
{
    nlohmann::json heading;
    nlohmann::json entries = nlohmann::json::array(); ///< each with the number of its `block`
    QList<QByteArray> blocks;                         ///< of points, inflated
    nlohmann::json ending;

    explicit ReportText(const QByteArray &page)
    {
        static const QRegularExpression element(
            QStringLiteral("<script class=\"(\\w+)\" type=\"[\\w/-]+\">(.*?)</script>\n"),
            QRegularExpression::DotMatchesEverythingOption);
        for (const QRegularExpressionMatch &match : element.globalMatch(QString::fromUtf8(page)))
            add(match.captured(1), match.captured(2).toUtf8());
    }

    /// The series of points of an entry, in their order.
    QList<QList<QPointF>> series(const nlohmann::json &entry) const
    {
        const QByteArray &block = blocks.at(entry.at("block").get<qsizetype>());
        qsizetype place = entry.at("at").get<qsizetype>();
        QList<QList<QPointF>> all;
        for (std::size_t i = 0; i < entry.at("traces").size() + (entry.contains("hasConsensus") ? 1 : 0); ++i)
            all.append(readPoints(block, &place));
        return all;
    }

    static QList<QPointF> readPoints(const QByteArray &bytes, qsizetype *place)
    {
        const auto number = [&bytes](qsizetype at, auto value) {
            quint64 bits = 0;
            for (std::size_t i = sizeof value; i-- > 0;)
                bits = bits << 8 | static_cast<quint8>(bytes.at(at + qsizetype(i)));
            std::memcpy(&value, &bits, sizeof value); // tests run on little-endian machines
            return value;
        };
        const auto count = qsizetype(number(*place, quint32()));
        const double start = number(*place + 4, double());
        const double factor = number(*place + 12, double());
        const qsizetype times = *place + 20;
        const qsizetype intensities = times + 4 * count;
        const auto ranked = [&](qsizetype from, qsizetype i) {
            quint32 bits = 0;
            for (qsizetype rank = 0; rank < 4; ++rank)
                bits |= quint32(quint8(bytes.at(from + rank * count + i))) << (8 * rank);
            float value = 0;
            std::memcpy(&value, &bits, sizeof value);
            return double(value);
        };
        QList<QPointF> points;
        for (qsizetype i = 0; i < count; ++i)
            points.append({start + ranked(times, i), factor * ranked(intensities, i)});
        *place = intensities + 4 * count;
        return points;
    }

    static nlohmann::json readJson(const QByteArray &bytes, qsizetype *place)
    {
        const auto size = qFromLittleEndian<quint32>(bytes.constData() + *place);
        const QByteArray text = bytes.mid(*place + 4, size);
        *place += 4 + size;
        return nlohmann::json::parse(text.toStdString());
    }

private:
    void add(const QString &name, const QByteArray &text)
    {
        if (name == QLatin1String("heading"))
            heading = nlohmann::json::parse(text.toStdString());
        if (name == QLatin1String("ending"))
            ending = nlohmann::json::parse(text.toStdString());
        if (name == QLatin1String("points")) {
            // qUncompress wants the size in front, and takes any as a first guess.
            blocks.append(qUncompress(QByteArray("\0\1\0\0", 4) + QByteArray::fromBase64(text)));
            EXPECT_FALSE(blocks.last().isEmpty());
        }
        if (name == QLatin1String("rows")) {
            for (nlohmann::json entry : nlohmann::json::parse(text.toStdString())) {
                entry["block"] = blocks.size();
                entries.push_back(std::move(entry));
            }
        }
    }
};

} // namespace zav
