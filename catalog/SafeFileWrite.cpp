#include "catalog/SafeFileWrite.h"
#include "catalog/ModuleConfiguration.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>
#include <QStorageInfo>

#include <cerrno>
#include <cstring>
#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ZEVGis::Data
{

namespace
{

QString message(unsigned id)
{
    return CModuleConfiguration::Instance()->GetMsg(id);
}

// The bytes written so far must be on the disk before the file replaces the old one: a
// disk that runs full while writing back cached pages says so only here.
bool syncToDisk(int handle)
{
#ifdef Q_OS_WIN
    return handle < 0 || _commit(handle) == 0;
#else
    int result;
    do
        result = ::fsync(handle);
    while (result != 0 && errno == EINTR);
    return result == 0;
#endif
}

// A rename lasts through a power cut only once the folder itself is on the disk. Best
// effort: the new file is in place either way.
void syncFolder(const QString& folder)
{
#ifndef Q_OS_WIN
    const int handle = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        ::fsync(handle);
        ::close(handle);
    }
#else
    Q_UNUSED(folder);
#endif
}

// Why a write failed, told from the state of the disk rather than from the system's error
// text alone: that one is terse and differs between systems. `systemReason` is kept as
// the detail.
QString reason(const QString& path, qint64 needed, const QString& systemReason)
{
    const QFileInfo target(path);
    const QString folder = target.absolutePath();
    const QString native = QDir::toNativeSeparators(path);
    if (!QFileInfo(folder).isDir())
        return message(70402).arg(native, QDir::toNativeSeparators(folder));
    const QStorageInfo storage(folder);
    if (storage.isValid() && storage.isReadOnly())
        return message(70401).arg(native);
    if (target.exists() && !target.isWritable())
        return message(70403).arg(native);
    if (!QFileInfo(folder).isWritable())
        return message(70404).arg(native, QDir::toNativeSeparators(folder));
    if (storage.isValid() && storage.bytesAvailable() < needed) {
        const QLocale locale;
        return message(70400).arg(native, locale.toString(storage.bytesAvailable()), locale.toString(needed));
    }
    return message(70405).arg(native, systemReason);
}

} // namespace

SafeFileWrite::SafeFileWrite(const QString& path) : m_path(path) {}

SafeFileWrite::~SafeFileWrite()
{
    drop();
}

void SafeFileWrite::drop()
{
    // QSaveFile removes its temporary file when it is destroyed without a commit.
    if (m_file)
        m_file->cancelWriting();
    m_file.reset();
    m_written = 0;
}

bool SafeFileWrite::fail(const QString& systemReason, qint64 needed)
{
    drop(); // first, so the free space measured below does not count the temporary file
    m_failed = true;
    m_error = reason(m_path, needed, systemReason);
    return false;
}

bool SafeFileWrite::write(const QByteArray& bytes)
{
    // What was written before a failure is gone: later bytes alone must not be put in place.
    if (m_failed)
        return false;
    if (!m_file) {
        if (!QFileInfo(QFileInfo(m_path).absolutePath()).isDir())
            return fail(QString(), bytes.size());
        m_file = std::make_unique<QSaveFile>(m_path);
        if (!m_file->open(QIODevice::WriteOnly))
            return fail(m_file->errorString(), bytes.size());
    }
    // A write that fits Qt's buffer only reaches the system on flush, and a flush that
    // fails inside QSaveFile::commit() would put a short file in place: flush and sync
    // here, where a failure can still keep the old file.
    const qint64 total = m_written + bytes.size();
    if (m_file->write(bytes) != bytes.size() || !m_file->flush())
        return fail(m_file->errorString(), total);
    if (!syncToDisk(m_file->handle()))
        return fail(QString::fromLocal8Bit(std::strerror(errno)), total);
    m_written = total;
    return true;
}

bool SafeFileWrite::commit()
{
    if (!m_file) {
        if (!m_failed)
            m_error = message(70405).arg(QDir::toNativeSeparators(m_path), QStringLiteral("nothing was written"));
        return false;
    }
    const bool ok = m_file->commit(); // removes its temporary file when it fails
    const QString why = m_file->errorString();
    const qint64 written = m_written;
    m_file.reset();
    m_written = 0;
    if (!ok)
        return fail(why, written);
    syncFolder(QFileInfo(m_path).absolutePath());
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
