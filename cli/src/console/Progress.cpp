// SPDX-License-Identifier: Apache-2.0
#include "Progress.h"

#include "Messages.h"

#include <cstdio>

namespace zav {

namespace {

constexpr int BAR_WIDTH = 30;
constexpr qint64 REDRAW_INTERVAL_MS = 100;
constexpr char ERASE_LINE[] = "\r\033[K";

/// In whole pieces from ten a second on.
QString rate(qint64 done, qint64 elapsedMs)
{
    if (done <= 0 || elapsedMs <= 0)
        return {};
    const double perSecond = 1000.0 * double(done) / double(elapsedMs);
    return QStringLiteral(", %1 / s").arg(perSecond, 0, 'f', perSecond < 10 ? 1 : 0);
}

QString timeLeft(qint64 done, qint64 total, qint64 elapsedMs)
{
    if (done <= 0)
        return {};
    const qint64 seconds = (elapsedMs * (total - done) / done + 999) / 1000;
    if (seconds < 60)
        return QStringLiteral(", %1 s left").arg(seconds);
    return QStringLiteral(", %1 min left").arg((seconds + 59) / 60);
}

} // namespace

Progress::Progress(qint64 total, const QString &unit, bool isShown, Messages *messages)
    : m_total(total), m_unit(unit), m_isShown(isShown), m_messages(messages)
{
    if (m_messages)
        m_messages->setProgress(this);
    m_clock.start();
}

Progress::~Progress()
{
    clear();
    if (m_messages)
        m_messages->setProgress(nullptr);
}

void Progress::update(qint64 done)
{
    const qint64 elapsed = m_clock.elapsed();
    if (!m_isShown || elapsed < m_nextDrawMs)
        return;
    m_nextDrawMs = elapsed + REDRAW_INTERVAL_MS;
    std::fputs(ERASE_LINE, stderr);
    std::fputs(qUtf8Printable(barText(done, m_total, m_unit, elapsed)), stderr);
    std::fflush(stderr);
    m_isDrawn = true;
}

void Progress::clear()
{
    if (!m_isDrawn)
        return;
    std::fputs(ERASE_LINE, stderr);
    std::fflush(stderr);
    m_isDrawn = false;
}

QString Progress::barText(qint64 done, qint64 total, const QString &unit, qint64 elapsedMs)
{
    if (total < 0)
        return QStringLiteral("%1 %2, %3 s").arg(done).arg(unit).arg(elapsedMs / 1000);
    const int filled = total > 0 ? int(BAR_WIDTH * done / total) : BAR_WIDTH;
    return QStringLiteral("[%1%2] %3 of %4 %5%6%7")
        .arg(QString(filled, QLatin1Char('#')), QString(BAR_WIDTH - filled, QLatin1Char('.')), QString::number(done),
             QString::number(total), unit, rate(done, elapsedMs), timeLeft(done, total, elapsedMs));
}

} // namespace zav
