#pragma once

#include <list>
#include <string>

// Process-wide trace state, for tests only.
namespace FunctionTracerInternal
{

// Closes the log stream and forgets the log file path, so the next line reads
// CLogEngine::GetLogFileFullPath() and opens the stream again. The call stack is kept.
void resetForTests();

// The names of the traced functions now running, outermost first.
std::list<std::string> callStack();

} // namespace FunctionTracerInternal
