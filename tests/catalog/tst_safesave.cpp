// Saves on real file systems that fail: a disk filled to its last page, a file system
// mounted read-only, a folder that is gone. Whatever fails, the old file stays byte for
// byte and no temporary file is left beside it. And no save overwrites another catalog's
// file: two registry entries on one file are refused.

#include "CatalogBuilders.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogStore.h"
#include "catalog/SafeFileWrite.h"

#include <QDirIterator>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

#ifdef Q_OS_LINUX
#include <cerrno>
#include <cstring>
#include <sys/mount.h>
#include <unistd.h>
#endif

using namespace ZEVGis::Data;
using namespace CatalogTest;

namespace
{

// A 1 MB tmpfs of its own, so a test can fill it up; only root may mount one.
class SmallDisk
{
public:
    SmallDisk()
    {
#ifdef Q_OS_LINUX
        if (::geteuid() != 0) {
            m_why = QStringLiteral("mounting a small file system needs root (CI runs as root)");
            return;
        }
        if (::mount("tmpfs", QFile::encodeName(m_dir.path()).constData(), "tmpfs", 0, "size=1m") != 0) {
            m_why = QStringLiteral("cannot mount a tmpfs: %1").arg(QString::fromLocal8Bit(std::strerror(errno)));
            return;
        }
        m_mounted = true;
#else
        m_why = QStringLiteral("small file systems are mounted on Linux only");
#endif
    }

    ~SmallDisk()
    {
#ifdef Q_OS_LINUX
        if (m_mounted)
            ::umount2(QFile::encodeName(m_dir.path()).constData(), MNT_DETACH);
#endif
    }

    bool mounted() const { return m_mounted; }
    QString why() const { return m_why; }
    QString path(const QString& name) const { return m_dir.filePath(name); }

    // Leaves `bytes` free (rounded down to the file system's pages) by adding a filler file.
    bool fillUpTo(qint64 bytes)
    {
        QStorageInfo storage(m_dir.path());
        const qint64 page = qMax(1, storage.blockSize());
        const qint64 fill = (storage.bytesAvailable() - bytes) / page * page;
        QString why;
        if (fill > 0 && !WriteFileSafely(path(QStringLiteral("filler")), QByteArray(fill, 'x'), why))
            return false;
        storage.refresh();
        return storage.bytesAvailable() < bytes + page;
    }

    bool makeReadOnly()
    {
#ifdef Q_OS_LINUX
        return ::mount(nullptr, QFile::encodeName(m_dir.path()).constData(), nullptr,
                       MS_REMOUNT | MS_RDONLY, nullptr) == 0;
#else
        return false;
#endif
    }

private:
    QTemporaryDir m_dir;
    bool m_mounted = false;
    QString m_why;
};

// A catalog of about `bytes` bytes when written.
QByteArray catalogOfSize(qint64 bytes, const QString& mark)
{
    CCatalog catalog;
    catalog.SetReference(QStringLiteral("TEST"));
    auto group = add(catalog, QStringLiteral("{G}"), QStringLiteral("Grupa ") + mark, true);
    for (int i = 0; catalog.GetXMLBytes().size() < bytes; ++i) {
        for (int k = 0; k < 20; ++k, ++i)
            add(catalog, QStringLiteral("{%1-%2}").arg(mark).arg(i),
                QStringLiteral("Kabel NA2XS(F)2Y 1x%1/25 12/20 kV, Đakovo").arg(i), false, group, i);
    }
    return catalog.GetXMLBytes();
}

// Every file in `folder` and below, so a left-over temporary file shows.
QStringList filesIn(const QString& folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

} // namespace

class TestSafeSave : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
    }

    // One writer for every file: the failures of the disk it is written to.
    void failedWriteKeepsOldFile_data()
    {
        QTest::addColumn<QString>("cause");
        QTest::addColumn<int>("size");
        QTest::addColumn<QString>("reason");
        // Under Qt's write buffer (16 KB) the bytes only reach the disk when flushed.
        QTest::newRow("full disk, small file") << "full" << 5000 << "the disk is full";
        QTest::newRow("full disk, large file") << "full" << 300000 << "the disk is full";
        QTest::newRow("read-only file system") << "read-only" << 5000 << "the file system is read-only";
        QTest::newRow("missing folder") << "missing" << 5000 << "does not exist";
    }

    void failedWriteKeepsOldFile()
    {
        QFETCH(QString, cause);
        QFETCH(int, size);
        QFETCH(QString, reason);
        SmallDisk disk;
        if (!disk.mounted())
            QSKIP(qPrintable(disk.why()));
        const QString path = disk.path(cause == u"missing" ? QStringLiteral("gone/file.xml") : QStringLiteral("file.xml"));
        const QByteArray before = catalogOfSize(size, QStringLiteral("OLD"));
        QString why;
        if (cause != u"missing")
            QVERIFY2(WriteFileSafely(path, before, why), qPrintable(why));
        if (cause == u"full")
            QVERIFY(disk.fillUpTo(2048));
        if (cause == u"read-only")
            QVERIFY(disk.makeReadOnly());
        const QStringList files = filesIn(disk.path(QString()));

        QVERIFY(!WriteFileSafely(path, catalogOfSize(size + 100, QStringLiteral("NEW")), why));
        QVERIFY2(why.contains(path) && why.contains(reason), qPrintable(why));
        QCOMPARE(filesIn(disk.path(QString())), files);
        if (cause != u"missing")
            QCOMPARE(readAll(path), before);
    }

    void writtenInTwoSteps()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("a.xml"));
        QString why;
        QVERIFY(WriteFileSafely(path, "old", why));
        {
            SafeFileWrite file(path);
            QVERIFY(file.write("new ") && file.write("bytes"));
            QCOMPARE(readAll(path), QByteArray("old")); // not in place before the commit
        } // dropped without a commit
        QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("a.xml")});
        QCOMPARE(readAll(path), QByteArray("old"));
        SafeFileWrite file(path);
        QVERIFY(file.write("new ") && file.write("bytes") && file.commit());
        QCOMPARE(readAll(path), QByteArray("new bytes"));
        QVERIFY(!file.commit()); // nothing left to put in place
        QVERIFY(file.error().contains(path));

        // Bytes written after a failure are not put in place without the ones before.
        const QString later = dir.filePath(QStringLiteral("later/b.xml"));
        SafeFileWrite failed(later);
        QVERIFY(!failed.write("first half, "));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("later")));
        QVERIFY(!failed.write("second half"));
        QVERIFY(!failed.commit());
        QVERIFY2(failed.error().contains(QStringLiteral("does not exist")), qPrintable(failed.error()));
        QVERIFY(!QFileInfo::exists(later));
    }

    // A save through the manager on a full disk: the catalog and its drawing copy both stay
    // as they were, whichever of the two meets the full disk.
    void fullDiskSaveKeepsBothFiles_data()
    {
        QTest::addColumn<bool>("catalogOnDisk"); // else the drawing copy is on the small disk
        QTest::addColumn<int>("size");
        QTest::newRow("catalog, 5 KB") << true << 5000;
        QTest::newRow("catalog, 300 KB") << true << 300000;
        QTest::newRow("drawing copy, 5 KB") << false << 5000;
        QTest::newRow("drawing copy, 300 KB") << false << 300000;
    }

    void fullDiskSaveKeepsBothFiles()
    {
        QFETCH(bool, catalogOnDisk);
        QFETCH(int, size);
        SmallDisk disk;
        if (!disk.mounted())
            QSKIP(qPrintable(disk.why()));
        QTemporaryDir elsewhere;
        const QString store = catalogOnDisk ? disk.path(QStringLiteral("store")) : elsewhere.filePath(QStringLiteral("store"));
        const QString drawing = catalogOnDisk ? elsewhere.filePath(QStringLiteral("plan.dwg")) : disk.path(QStringLiteral("plan.dwg"));
        RegistryEntry entry;
        entry.metadata.reference = QStringLiteral("TEST");
        entry.metadata.fileName = QStringLiteral("test.xml");
        entry.metadata.maintainDocumentSpecificVersion = 1;
        const QString catalogPath = store + QStringLiteral("/test.xml");
        const QString copyPath = drawing + QStringLiteral(".catalogs/test.xml");
        QVERIFY(writeAll(store + QStringLiteral("/registry.xml"), writeRegistry({entry})));
        QVERIFY(writeAll(catalogPath, catalogOfSize(size, QStringLiteral("CAT"))));
        QVERIFY(writeAll(copyPath, catalogOfSize(size, QStringLiteral("COPY"))));
        const QByteArray catalogBefore = readAll(catalogPath);
        const QByteArray copyBefore = readAll(copyPath);

        CCatalogManager* manager = CCatalogManager::Instance();
        manager->Configure(store, drawing);
        auto catalog = manager->GetCatalog(QStringLiteral("TEST"), 1);
        auto copy = manager->GetCatalog(QStringLiteral("TEST"), 0);
        QVERIFY(catalog && copy);
        QVERIFY(disk.fillUpTo(2048));
        const QStringList files = filesIn(disk.path(QString()));
        add(*catalog, QStringLiteral("{NEW}"), QStringLiteral("Novi kabel"), false);
        add(*copy, QStringLiteral("{NEW}"), QStringLiteral("Novi kabel"), false);

        QCOMPARE(manager->Save(QStringLiteral("TEST"), 1, 1), 0);
        const QString errors = manager->TakeErrors().join(u'\n');
        const QString full = catalogOnDisk ? catalogPath : copyPath;
        QVERIFY2(errors.contains(full) && errors.contains(QStringLiteral("the disk is full")), qPrintable(errors));
        QCOMPARE(readAll(catalogPath), catalogBefore);
        QCOMPARE(readAll(copyPath), copyBefore);
        QCOMPARE(filesIn(disk.path(QString())), files);
        QCOMPARE(filesIn(elsewhere.path()).size(), catalogOnDisk ? 1 : 2);
    }

    // Two registry entries on one file: saving one would overwrite the other's catalog.
    void twoEntriesOnOneFile_data()
    {
        QTest::addColumn<QString>("file"); // the second entry's file
        QTest::addColumn<QString>("error"); // empty: a file of its own
        QTest::newRow("same name") << "cables.xml" << "entries CABLES and CONDUCTORS (at line 3, column 2) both name the file";
        QTest::newRow("through the current folder") << "./cables.xml" << "both name the file";
        QTest::newRow("through a folder and back") << "sub/../cables.xml" << "both name the file";
        QTest::newRow("through a link") << "link.xml" << "both name the file";
        QTest::newRow("the registry itself") << "registry.xml" << "names the registry itself";
        // Outside the store a file's drawing copy goes by its name alone.
        QTest::newRow("one drawing copy for two files") << "../other/cables.xml" << "both name the file <drawing>.catalogs/cables.xml";
        QTest::newRow("a file of its own") << "conductors.xml" << "";
    }

    void twoEntriesOnOneFile()
    {
        QFETCH(QString, file);
        QFETCH(QString, error);
        QTemporaryDir dir;
        const QDir store(dir.filePath(QStringLiteral("store")));
        const QByteArray registry = "<registry>\n"
                                    " <catalog reference=\"CABLES\" file=\"cables.xml\" drawingVersion=\"1\"/>\n"
                                    " <catalog reference=\"CONDUCTORS\" file=\"" + file.toUtf8() + "\" drawingVersion=\"1\"/>\n"
                                    "</registry>\n";
        QVERIFY(writeAll(store.filePath(QStringLiteral("registry.xml")), registry));
        QVERIFY(writeAll(store.filePath(QStringLiteral("cables.xml")), catalogOfSize(100, QStringLiteral("C"))));
        QVERIFY(writeAll(dir.filePath(QStringLiteral("other/cables.xml")), catalogOfSize(100, QStringLiteral("O"))));
        store.mkdir(QStringLiteral("sub"));
        QFile::link(store.filePath(QStringLiteral("cables.xml")), store.filePath(QStringLiteral("link.xml")));

        CCatalogManager* manager = CCatalogManager::Instance();
        manager->Configure(store.path(), dir.filePath(QStringLiteral("plan.dwg")));
        std::vector<boost::shared_ptr<CCatalogMetadata>> entries;
        manager->GetCatalogRegistry(entries);
        const QString errors = manager->TakeErrors().join(u'\n');
        QCOMPARE(entries.size(), size_t(error.isEmpty() ? 2 : 1));
        if (error.isEmpty()) {
            QVERIFY2(errors.isEmpty(), qPrintable(errors));
            return;
        }
        QVERIFY2(errors.contains(error) && errors.contains(QStringLiteral("CONDUCTORS")), qPrintable(errors));
        QVERIFY2(errors.contains(store.path()), qPrintable(errors));

        // The later entry is gone, so nothing saved through it can undo a save of the first.
        auto cables = manager->GetCatalog(QStringLiteral("CABLES"), 1);
        auto copy = manager->GetCatalog(QStringLiteral("CABLES"), 0);
        QVERIFY(cables && copy);
        QVERIFY(!manager->GetCatalog(QStringLiteral("CONDUCTORS"), 1));
        add(*cables, QStringLiteral("{NEW}"), QStringLiteral("Novi kabel"), false);
        add(*copy, QStringLiteral("{NEW}"), QStringLiteral("Novi kabel"), false);
        QCOMPARE(manager->Save(QStringLiteral("CABLES"), 1, 1), 1);
        QCOMPARE(manager->Save(QStringLiteral("CONDUCTORS"), 1, 1), 0);
        for (const QString& path : {store.filePath(QStringLiteral("cables.xml")), dir.filePath(QStringLiteral("plan.dwg.catalogs/cables.xml"))}) {
            CCatalog saved;
            QVERIFY(saved.ParseXMLBytes(readAll(path)));
            QVERIFY(saved.GetItembyGuid(QStringLiteral("{NEW}")));
        }
        QCOMPARE(readAll(store.filePath(QStringLiteral("registry.xml"))), registry);
        manager->TakeErrors();
    }
};

QTEST_MAIN(TestSafeSave)
#include "tst_safesave.moc"
