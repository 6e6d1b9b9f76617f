#pragma once

#include <QStringList>
#include <QTextStream>

namespace ZevxTool
{

// "export REF FILE [GUID...]": the entries (default: every group) into a new catalog file,
// as the import/export dialog's export makes it. "import REF FILE [GUID...] [--dry-run]": the
// file's entries (default: every group) into catalog REF as the dialog's import brings them,
// then REF is saved; with `dryRun` nothing changes and each entry is reported against what
// REF holds. Exit code 0 done, 1 a catalog, store or file problem (one line on `err`).
int exportEntries(const QString& reference, const QString& file, const QStringList& guids,
                  QTextStream& out, QTextStream& err);
int importEntries(const QString& reference, const QString& file, const QStringList& guids,
                  bool dryRun, QTextStream& out, QTextStream& err);

} // namespace ZevxTool
