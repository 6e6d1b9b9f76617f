#pragma once

#include <QString>

#include <cstddef>

// UTF-8 to UTF-16 for large files: ASCII runs are widened 16 bytes at a time and well-formed
// sequences decoded inline. Malformed input gives the same replacement characters as
// QStringDecoder. A byte-order mark is not removed: it stays as U+FEFF.

// Decodes [data, end) to out, which must have room for one unit per byte; returns the new end.
char16_t* DecodeUtf8(const char* data, const char* end, char16_t* out);

// The length of the longest prefix of data that does not end inside a multi-byte sequence, so
// that a file can be decoded block by block.
size_t CompleteUtf8Prefix(const char* data, size_t size);

QString DecodeUtf8(const char* data, qsizetype size);

// Asks for large pages under the whole 2 MB pages of a large buffer that is about to be filled.
void AdviseLargePages(void* memory, size_t bytes);
