#include "catalog/SafeFileWrite.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace ZEVGis::Data
{

SafeFileWrite::SafeFileWrite(const QString& path) : m_path(path) {}

SafeFileWrite::~SafeFileWrite()
{
    if (m_file)
        m_file->cancelWriting();
}

bool SafeFileWrite::fail(const QString& why)
{
    m_error = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(m_path), why);
    if (m_file)
        m_file->cancelWriting();
    m_file.reset();
    m_written = false;
    return false;
}

bool SafeFileWrite::write(const QByteArray& bytes)
{
    const QFileInfo target(m_path);
    if (!target.absoluteDir().exists())
        return fail(QStringLiteral("the folder %1 does not exist")
                        .arg(QDir::toNativeSeparators(target.absolutePath())));
    m_file = std::make_unique<QSaveFile>(m_path);
    if (!m_file->open(QIODevice::WriteOnly))
        return fail(m_file->errorString());
    // A write that fits Qt's buffer only reaches the disk on flush; its failure must be
    // seen here, not lost inside commit().
    if (m_file->write(bytes) != bytes.size() || !m_file->flush())
        return fail(m_file->errorString());
    if (::fsync(m_file->handle()) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    m_written = true;
    return true;
}

bool SafeFileWrite::commit()
{
    if (!m_written || !m_file)
        return fail(QStringLiteral("nothing was written"));
    const bool ok = m_file->commit();
    const QString why = m_file->errorString();
    m_file.reset();
    m_written = false;
    if (!ok)
        return fail(why);
    return true;
}

bool WriteFileSafely(const QString& path, const QByteArray& bytes, QString& why)
{
    SafeFileWrite file(path);
    if (file.write(bytes) && file.commit())
        return true;
    why = file.error();
    return false;
}

} // namespace ZEVGis::Data
