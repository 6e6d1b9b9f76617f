#include "trace/FunctionTracer.h"
#include "trace/FunctionTracerInternal.h"

#include "catalog/LogEngine.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <memory>
#include <vector>

namespace
{

constexpr int kThreshold = 3;

struct TraceState
{
    bool pathRead = false;
    std::string logFilePath;
    std::unique_ptr<std::ofstream> logFile;
    std::list<std::string> callStack;
};

TraceState& state()
{
    static TraceState instance;
    return instance;
}

const std::string& logFilePath()
{
    TraceState& s = state();
    if (!s.pathRead)
    {
        s.logFilePath = CLogEngine::GetLogFileFullPath();
        s.pathRead = true;
    }
    return s.logFilePath;
}

// Opened once; a file that cannot be opened sends every line to standard output instead.
std::ostream& logStream()
{
    TraceState& s = state();
    if (!s.logFile)
        s.logFile = std::make_unique<std::ofstream>(logFilePath(), std::ios::out | std::ios::app);
    if (s.logFile->is_open())
        return *s.logFile;
    return std::cout;
}

bool shouldWrite(int level)
{
    return level <= kThreshold && CLogEngine::GetLoggingOnOff() != 0;
}

std::string timeStamp()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#if defined(_WIN32)
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    char text[16];
    std::strftime(text, sizeof text, "%H:%M:%S", &local);
    return text;
}

// Everything up to and including the last backslash goes; a name without one is printed
// whole. Traced functions pass their bare file name, so the log reads the same everywhere.
std::string fileNameOnly(const std::string& path)
{
    const std::string::size_type separator = path.rfind('\\');
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

std::string formatV(const char* format, std::va_list arguments)
{
    std::va_list measure;
    va_copy(measure, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length <= 0)
        return {};
    std::vector<char> buffer(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    return std::string(buffer.data(), static_cast<std::size_t>(length));
}

std::string formatPrefix(const std::string& file, unsigned line, const std::string& function)
{
    return FunctionTracer::Format("[%s] %-32s(%5.5i): [%-16s], ", timeStamp().c_str(),
                                  fileNameOnly(file).c_str(), static_cast<int>(line),
                                  function.c_str());
}

} // namespace

FunctionTracer::FunctionTracer(const char* file, unsigned line, const char* function, int level,
                               bool startTimer, const void* extra)
    : m_file(file ? file : ""), m_line(line), m_function(function ? function : ""), m_level(level),
      m_timed(startTimer), m_start(startTimer ? std::chrono::steady_clock::now()
                                              : std::chrono::steady_clock::time_point{}),
      m_extra(extra)
{
    write(m_line, m_level, "Entering function , " + m_function);
    state().callStack.push_back(m_function);
}

FunctionTracer::~FunctionTracer()
{
    write(m_line, m_level, "Exiting function , " + m_function);
    std::list<std::string>& stack = state().callStack;
    if (!stack.empty())
        stack.pop_back();
}

bool FunctionTracer::Verify(const FunctionTracer& context, bool condition, const char* expression,
                            unsigned line)
{
    if (!condition)
    {
        const std::string body =
            std::string("Failed verification:  '") + (expression ? expression : "") + "'";
        context.write(line != 0 ? line : context.m_line, context.m_level, body);
    }
    return condition;
}

void FunctionTracer::Log(int level, const std::string& text) const
{
    write(m_line, level, text);
}

void FunctionTracer::LogAt(unsigned line, int level, const std::string& text) const
{
    write(line, level, text);
}

std::string FunctionTracer::Format(const char* format, ...)
{
    if (!format)
        return {};
    std::va_list arguments;
    va_start(arguments, format);
    std::string result = formatV(format, arguments);
    va_end(arguments);
    return result;
}

double FunctionTracer::ElapsedSeconds() const
{
    if (!m_timed)
        return 0.0;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

void FunctionTracer::write(unsigned line, int level, const std::string& body) const
{
    if (!shouldWrite(level))
        return;
    std::ostream& out = logStream();
    out << formatPrefix(m_file, line, m_function) << body << '\n';
    out.flush();
}

namespace FunctionTracerInternal
{

void resetForTests()
{
    TraceState& s = state();
    s.logFile.reset();
    s.logFilePath.clear();
    s.pathRead = false;
}

std::list<std::string> callStack()
{
    return state().callStack;
}

} // namespace FunctionTracerInternal
