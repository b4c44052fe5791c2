// SPDX-License-Identifier: Apache-2.0
#include "MessageRecorder.h"

namespace zav {

namespace {

MessageRecorder *active = nullptr; // Qt's handlers carry no context of their own

} // namespace

MessageRecorder::MessageRecorder() : m_previous(qInstallMessageHandler(record))
{
    active = this;
}

MessageRecorder::~MessageRecorder()
{
    active = nullptr;
    qInstallMessageHandler(m_previous);
}

QList<QString> MessageRecorder::criticalTexts() const
{
    QList<QString> texts;
    for (const Message &message : m_messages) {
        if (message.type == QtCriticalMsg && message.category == QLatin1String("zav.ml"))
            texts.append(message.text);
    }
    return texts;
}

void MessageRecorder::record(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    active->m_messages.append({type, QString::fromUtf8(context.category), text, QString::fromUtf8(context.file),
                               context.line, QString::fromUtf8(context.function)});
}

} // namespace zav
