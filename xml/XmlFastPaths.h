#pragma once

// The parser's shortcuts (block searches in the scanner, remembered end-tag misses) give the
// same results as the plain algorithm. Switched off only to check exactly that: the fuzz target
// parses every input both ways.
namespace XmlFastPaths
{
inline bool Enabled = true;
}
