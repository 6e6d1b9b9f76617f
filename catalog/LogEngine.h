#pragma once

#include <string>

// Logging switch and log file of the suite. ZEVX_LOG ("1", "on", "true", "yes") switches
// logging on; ZEVX_LOG_FILE names the file, else "zevxcatalogeditor.log" in the user's data
// folder. Both are read on every call, so a test can change them.
class CLogEngine
{
public:
    static int GetLoggingOnOff();
    static std::string GetLogFileFullPath();
};
