// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

namespace zav {

class Messages;

/// A progress bar on standard error, for work that takes longer than a second on a terminal; otherwise it writes
/// nothing. It is drawn at most ten times a second and cleared when the object is destroyed.
class Progress
{
public:
    /// `total` pieces of work, called `unit` in the bar ("peptides"); below 0: the number is unknown. `isShown` false:
    /// never writes. `messages`, where given, clear this bar before they write a line; they must outlive it.
    Progress(qint64 total, const QString &unit, bool isShown, Messages *messages = nullptr);
    ~Progress();

    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// `done` pieces are finished.
    void update(qint64 done);

    /// Takes the bar off the terminal, so that a line can be written; the next update draws it again.
    void clear();

    /// The bar's text: `[######........] 1200 of 3000 peptides, 450 / s, 4 s left`, and without a total `1200 peptides,
    /// 3 s`. `elapsedMs` since the start.
    static QString barText(qint64 done, qint64 total, const QString &unit, qint64 elapsedMs);

private:
    qint64 m_total = 0;
    QString m_unit;
    bool m_isShown = false;
    Messages *m_messages = nullptr;
    bool m_isDrawn = false;
    qint64 m_nextDrawMs = 1000;
    QElapsedTimer m_clock;
};

} // namespace zav
