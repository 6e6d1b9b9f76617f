#pragma once

#include <QStringList>
#include <QTextStream>

// The commands of zevxcatalog, writing to the given streams. Each returns the exit code:
// 0 success, 1 a catalog or store problem, 2 a usage error.
namespace ZevxTool
{

int listRegistry(QTextStream& out, QTextStream& err);
int showCatalog(const QString& reference, bool drawingCopy, QTextStream& out, QTextStream& err);
int validateFiles(const QStringList& files, QTextStream& out, QTextStream& err);

} // namespace ZevxTool
