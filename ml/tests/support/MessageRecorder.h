// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

namespace zav {

/// Records what is logged through Qt while it lives, in place of Qt's own output. One at a time.
class MessageRecorder
{
public:
    struct Message
    {
        QtMsgType type = QtDebugMsg;
        QString category;
        QString text;
        QString sourceFile; // empty where the message names none
        int line = 0;
        QString functionSignature;
    };

    MessageRecorder();
    ~MessageRecorder();

    Q_DISABLE_COPY_MOVE(MessageRecorder)

    const QList<Message> &messages() const { return m_messages; }

    /// The texts of the critical messages of the category "zav.ml".
    QList<QString> criticalTexts() const;

private:
    static void record(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QList<Message> m_messages;
    QtMessageHandler m_previous = nullptr;
};

} // namespace zav
