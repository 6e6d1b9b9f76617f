#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

class QSaveFile;

namespace ZEVGis::Data
{

// Every file the project writes goes through here: the bytes go to a temporary file beside
// the target, every byte is checked on its way to the disk, and only then is the file put in
// place. A failure (full disk, read-only folder, missing folder) leaves the old file exactly
// as it was and no temporary file behind; error() then says which file and why.
//
// Two steps, so several files can be written first and put in place together.
class SafeFileWrite
{
public:
    explicit SafeFileWrite(const QString& path);
    // A write that was not committed is dropped with its temporary file.
    ~SafeFileWrite();
    SafeFileWrite(const SafeFileWrite&) = delete;
    SafeFileWrite& operator=(const SafeFileWrite&) = delete;

    QString path() const { return m_path; }
    // Writes all of `bytes` to the temporary file (after what earlier calls wrote) and makes
    // sure they reached the disk. After a failure the temporary file is gone, and every
    // later write() and commit() fails too.
    bool write(const QByteArray& bytes);
    // Puts the written file in place of the target.
    bool commit();
    // Which file and why (full disk, read-only file system or file, missing folder, no
    // permission, else the system's reason), after a failed write() or commit().
    QString error() const { return m_error; }

private:
    // Drops the temporary file, then tells why from the state of the disk.
    bool fail(const QString& systemReason, qint64 needed);
    void drop();

    QString m_path;
    QString m_error;
    std::unique_ptr<QSaveFile> m_file;
    qint64 m_written = 0;
    bool m_failed = false; // a failed write or commit is final
};

// The one-call form: true when `path` now holds exactly `bytes`; otherwise false, the old
// file untouched, and `why` says which file and why.
bool WriteFileSafely(const QString& path, const QByteArray& bytes, QString& why);

} // namespace ZEVGis::Data
