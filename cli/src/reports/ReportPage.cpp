// SPDX-License-Identifier: Apache-2.0
#include "ReportPage.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QList>

#include <new>
#include <string_view>

namespace zav {

// The files in the folder `page`.
std::string_view reportMarkup();
std::string_view reportStyle();
std::string_view traceReportScript();
std::string_view spectrumReportScript();

namespace {

constexpr int COMPRESSION_LEVEL = 6;
constexpr int LENGTH_SIZE = 4; // bytes that qCompress puts before the deflated ones

QByteArray bytesOf(std::string_view text)
{
    return QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
}

/// How a policy names a style or a script that it allows.
QByteArray sourceHash(const QByteArray &text)
{
    return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() + '\'';
}

/// The markup with the style and the script, cut where the data go.
QList<QByteArray> parts(ReportKind kind)
{
    const QByteArray style = '\n' + bytesOf(reportStyle());
    const QByteArray script =
        "\n\"use strict\";\n" + bytesOf(kind == ReportKind::Traces ? traceReportScript() : spectrumReportScript());
    QByteArray page = bytesOf(reportMarkup());
    page.replace("@policy@", "default-src 'none'; style-src " + sourceHash(style) + "; script-src " +
                                 sourceHash(script) + "; base-uri 'none'; form-action 'none'");
    page.replace("@style@", style);
    page.replace("@script@", script);
    const QByteArray mark = "@data@\n";
    const qsizetype place = page.indexOf(mark);
    return {page.left(place), page.mid(place + mark.size())};
}

QByteArray element(const char *name, const char *type, const QByteArray &text)
{
    return QByteArray("<script class=\"") + name + "\" type=\"" + type + "\">" + text + "</script>\n";
}

} // namespace

QByteArray ReportPage::opening(ReportKind kind)
{
    return parts(kind).first();
}

QByteArray ReportPage::closing(ReportKind kind)
{
    return parts(kind).last();
}

QByteArray jsonElement(const char *name, const QByteArray &json)
{
    QByteArray text;
    text.reserve(json.size());
    for (const char character : json) {
        switch (character) {
        case '<':
            text += "\\u003c";
            break;
        case '>':
            text += "\\u003e";
            break;
        case '&':
            text += "\\u0026";
            break;
        default:
            text += character;
        }
    }
    return element(name, "application/json", text);
}

QByteArray bytesElement(const char *name, const QByteArray &bytes)
{
    const QByteArray deflated = qCompress(bytes, COMPRESSION_LEVEL);
    if (deflated.isEmpty())
        throw std::bad_alloc();
    return element(name, "application/octet-stream", deflated.mid(LENGTH_SIZE).toBase64());
}

} // namespace zav
