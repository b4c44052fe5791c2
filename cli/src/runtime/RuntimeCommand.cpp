// SPDX-License-Identifier: Apache-2.0
#include "RuntimeCommand.h"

#include "OutputFile.h"
#include "Terminal.h"

#include <zav/TensorFlowRuntime.h>

namespace zav {

namespace {

QString originText(RuntimeOrigin origin)
{
    switch (origin) {
    case RuntimeOrigin::ConfiguredPath:
        return QStringLiteral("setting: the path that cmake was given as ZAV_TENSORFLOW_LIBRARY");
    case RuntimeOrigin::BesideLibrary:
        return QStringLiteral("setting: the folder zav beside the library libzav_ml");
    case RuntimeOrigin::BuildFolder:
        return QStringLiteral("build: the folder that cmake was given as ZAV_TENSORFLOW_DIR");
    case RuntimeOrigin::System:
        return QStringLiteral("system: its search for libraries, LD_LIBRARY_PATH included");
    case RuntimeOrigin::HostFolder:
        return QStringLiteral("cache: the folder of 'zav runtime install'");
    }
    return {};
}

Result<RuntimeDescription> describeQuietly(bool verbose)
{
    const QuietStandardError quiet(!verbose);
    return TensorFlowRuntime::describe();
}

} // namespace

Error RuntimeCommand::work()
{
    const Result<RuntimeDescription> found = describeQuietly(m_isVerbose);
    if (found.hasError())
        return found.error();
    const RuntimeDescription &runtime = found.value();
    const QString text = QStringLiteral("TensorFlow  %1\nfile        %2\nfound by    %3\n");
    return writeToStandardOutput(text.arg(runtime.version, runtime.file, originText(runtime.origin)));
}

} // namespace zav
