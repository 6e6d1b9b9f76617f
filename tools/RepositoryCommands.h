#pragma once

#include <QStringList>
#include <QTextStream>

namespace ZevxTool
{

// "repo list REF | push REF [GUID...] | pull REF GUID... | delete REF GUID": `words` are
// what follows "repo". `url` is the --repository value, empty for ZEVX_REPOSITORY or the
// default file. Exit code 0 done, 1 a catalog or repository problem (one line on `err`),
// 2 a bad command line.
int repositoryCommand(const QStringList& words, const QString& url, QTextStream& out,
                      QTextStream& err);

// Why `words` (after "repo") are not a complete command; empty when they are.
QString repositoryUsageError(const QStringList& words);

} // namespace ZevxTool
