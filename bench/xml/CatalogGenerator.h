#pragma once

#include <cstddef>
#include <string>

// Writes a catalog-shaped UTF-8 XML file of about targetBytes: nested groups of items, each with
// categories of typed properties, names with non-ASCII letters. The same size gives the same
// bytes on every run. Returns false when the file cannot be written.
bool WriteCatalogFile(const std::string& path, size_t targetBytes);
