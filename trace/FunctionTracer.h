#pragma once

#include <chrono>
#include <string>

#if defined(__GNUC__)
#define ZEVX_PRINTF_FORMAT(formatIndex, firstArgument)                                             \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define ZEVX_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

// Scope object of the diagnostic log: writes "Entering function " when a traced function
// starts and "Exiting function " when it ends, while CLogEngine says logging is on and the
// tracer's level is at most the threshold (3). Every line starts with the prefix
// "[HH:MM:SS] <file, 32 wide>(<line, 5 digits>): [<function, 16 wide>], ".
//
// Lines go to the file named by CLogEngine::GetLogFileFullPath(), opened once in append mode,
// or to standard output when that file cannot be opened. The process keeps one call stack of
// traced function names; it is kept whether or not logging is on.
//
// Not thread-safe: the module runs on the user-interface thread only.
class FunctionTracer
{
public:
    static constexpr int kDefaultLevel = 3;

    // `file` is the source file of the traced function; everything up to its last backslash
    // is dropped when printed. `startTimer` starts the elapsed-time record now;
    // `extra` is carried along for the caller and never printed.
    FunctionTracer(const char* file, unsigned line, const char* function, int level = kDefaultLevel,
                   bool startTimer = true, const void* extra = nullptr);
    ~FunctionTracer();

    FunctionTracer(const FunctionTracer&) = delete;
    FunctionTracer& operator=(const FunctionTracer&) = delete;

    // Returns `condition` unchanged; when it is false writes
    // "Failed verification:  '<expression>'" at `line` (the tracer's own line when 0).
    static bool Verify(const FunctionTracer& context, bool condition, const char* expression,
                       unsigned line = 0);

    // A further line of the traced function: prefix, then `text`.
    void Log(int level, const std::string& text) const;
    void LogAt(unsigned line, int level, const std::string& text) const;

    // printf-style formatting for the texts of Log ("Dodan item: %s").
    static std::string Format(const char* format, ...) ZEVX_PRINTF_FORMAT(1, 2);

    int Level() const { return m_level; }
    const std::string& FunctionName() const { return m_function; }
    const void* Extra() const { return m_extra; }
    // Seconds since the tracer was built; 0 when built without starting the timer.
    double ElapsedSeconds() const;

private:
    void write(unsigned line, int level, const std::string& body) const;

    std::string m_file;
    unsigned m_line;
    std::string m_function;
    int m_level;
    bool m_timed;
    std::chrono::steady_clock::time_point m_start;
    const void* m_extra;
};

// Trace the enclosing function under an explicit file name and line, as the log has always
// shown them:   ZEVX_TRACE_FUNCTION("CCatalogEditorDlg::OnBnClickedOk", "CatalogEditorDlg", 414);
#define ZEVX_TRACE_FUNCTION(function, file, line)                                                  \
    FunctionTracer zevxTracer((file), (line), (function), FunctionTracer::kDefaultLevel)
#define ZEVX_TRACE_FUNCTION_LEVEL(function, file, line, level)                                     \
    FunctionTracer zevxTracer((file), (line), (function), (level))
// Verify a condition of the traced function; the condition's own text is logged when it fails:
//   ZEVX_TRACE_VERIFY(ptrCatalog.get() != 0, 977);
#define ZEVX_TRACE_VERIFY(condition, line)                                                         \
    FunctionTracer::Verify(zevxTracer, static_cast<bool>(condition), #condition, (line))
// A further line of the traced function: ZEVX_TRACE_LOG(3, "Dodan item: %s", name.c_str());
#define ZEVX_TRACE_LOG(level, ...) zevxTracer.Log((level), FunctionTracer::Format(__VA_ARGS__))
