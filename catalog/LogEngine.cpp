#include "catalog/LogEngine.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace
{

const char* const kLogSwitchVariable = "ZEVX_LOG";
const char* const kLogFileVariable = "ZEVX_LOG_FILE";

bool isSwitchedOn(const QString& value)
{
    const QString normalized = value.trimmed().toLower();
    return normalized == QLatin1String("1") || normalized == QLatin1String("on")
        || normalized == QLatin1String("true") || normalized == QLatin1String("yes");
}

QString defaultLogFolder()
{
    // The generic data folder, not the per-application one, so the standalone program, the
    // command-line tool and the tests all write beside each other whatever their names.
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return base + QStringLiteral("/zevxcatalogeditor");
}

} // namespace

int CLogEngine::GetLoggingOnOff()
{
    return isSwitchedOn(qEnvironmentVariable(kLogSwitchVariable)) ? 1 : 0;
}

std::string CLogEngine::GetLogFileFullPath()
{
    QString path = qEnvironmentVariable(kLogFileVariable);
    if (path.trimmed().isEmpty())
    {
        const QString folder = defaultLogFolder();
        QDir().mkpath(folder); // a failure shows later: the tracer falls back to standard output
        path = folder + QStringLiteral("/zevxcatalogeditor.log");
    }
    // The log is narrow text opened through the C++ library: use the file system's encoding.
    return QFile::encodeName(QDir::toNativeSeparators(path)).toStdString();
}
