// Protection of the file that unsaved work refers to, where calls of the file system fail.
//
// Needs tests/faults/faultlibrary.cpp preloaded, which also clones files.

#include "faultlibrary.h"

#include "src/safety/basefile.h"
#include "support/support.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>

using Support::Read_File;
using Support::Write_File;

class TestProtection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void a_file_that_cannot_be_linked_is_cloned();
    void the_file_is_synced_once();
    void a_failed_sync_is_repeated();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    TBaseFile Base() const { return {In("file"), TFileStamp::Of(In("file")), {TPagePlace()}}; }
    void Arm(Faults::TCall call, Faults::TKind kind, int at) const;
    static int Disarm();

    std::unique_ptr<QTemporaryDir> d_folder;
};

namespace {

template <typename TFunction>
TFunction* From_Library(const char* name)
{
    return reinterpret_cast<TFunction*>(dlsym(RTLD_DEFAULT, name));
}

} // namespace

void TestProtection::initTestCase()
{
    QVERIFY2(dlsym(RTLD_DEFAULT, "Quillet_Arm_Fault"), "the fault library is not preloaded");
}

void TestProtection::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    Write_File(In("file"), "content");
}

void TestProtection::Arm(Faults::TCall call, Faults::TKind kind, int at) const
{
    From_Library<decltype(Quillet_Arm_Fault)>("Quillet_Arm_Fault")(
        QFile::encodeName(d_folder->path()).constData(), call, kind, at);
}

int TestProtection::Disarm()
{
    return From_Library<decltype(Quillet_Disarm_Fault)>("Quillet_Disarm_Fault")();
}

void TestProtection::a_file_that_cannot_be_linked_is_cloned()
{
    TBaseFile base = Base();
    Arm(Faults::Rename, Faults::Fail, 1);
    base.Protect(In("base"));
    QCOMPARE(Disarm(), 1);
    QVERIFY(base.Is_Protected());
    QCOMPARE(Support::Mode(In("base")), QString("600"));
    // A clone does not depend on the file.
    Write_File(In("file"), "other");
    QVERIFY(base.Is_Intact());
    QCOMPARE(Read_File(In("base")), QByteArray("content"));
}

void TestProtection::the_file_is_synced_once()
{
    TBaseFile base = Base();
    base.Protect(In("base"));
    Arm(Faults::Sync, Faults::Fail, 0);
    QVERIFY(base.Sync());
    QVERIFY(base.Sync());
    QCOMPARE(Disarm(), 1);
}

void TestProtection::a_failed_sync_is_repeated()
{
    TBaseFile base = Base();
    Arm(Faults::Sync, Faults::Fail, 1);
    QVERIFY(!base.Sync());
    QVERIFY(base.Sync());
    QCOMPARE(Disarm(), 2);
}

QTEST_MAIN(TestProtection)
#include "test_protection.moc"
