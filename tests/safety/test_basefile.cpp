// The file that unsaved work refers to: its protection, and how its parts are read.

#include "src/safety/basefile.h"
#include "support/support.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using Support::Entries;
using Support::Read_File;
using Support::Write_File;

namespace {

/// Two fields as in a project file: an image and labels.
const QByteArray image = "image " + QByteArray(100, 'i') + " end";
const QByteArray items = "<Quillet_Data/>";

QByteArray Content()
{
    const auto field = [](const QByteArray& bytes) {
        const int size = bytes.size();
        return QByteArray(reinterpret_cast<const char*>(&size), sizeof(size)) + bytes;
    };
    return field(image) + field(items);
}

constexpr quint64 revision = 7;
constexpr quint64 image_id = 8;

TPagePlace Place()
{
    const int image_size = image.size();
    return {revision,
            image_id,
            {4, image_size},
            {8 + image_size, items.size()},
            TPagePlace::Ends_Of(image),
            TPagePlace::Digest_Of(items)};
}

} // namespace

class TestBaseFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pages_and_images_are_found_by_revision_and_id();
    void without_a_file_there_is_nothing();
    void a_file_that_changed_after_its_stamp_is_no_base();
    void a_protected_file_survives_its_deletion_and_replacement();
    void the_target_of_a_symbolic_link_is_protected();
    void a_file_that_was_replaced_before_is_not_protected_data();
    void a_file_that_was_replaced_before_is_not_protected();
    void a_file_on_another_file_system_is_not_protected();
    void an_overwritten_file_is_not_intact_data();
    void an_overwritten_file_is_not_intact();
    void an_unprotected_file_is_intact_while_it_is_unchanged();

    void parts_are_read_from_the_first_candidate_that_has_them_data();
    void parts_are_read_from_the_first_candidate_that_has_them();
    void the_unchanged_file_is_preferred();
    void a_damaged_part_does_not_affect_the_others();
    void labels_of_another_version_of_equal_size_are_not_read();
    void a_part_that_no_candidate_has_is_missing();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    TBaseFile Base() const { return {In("a.quillet"), TFileStamp::Of(In("a.quillet")), {Place()}}; }
    TBaseReader Reader(const TFileIdentity& identity) const
    {
        return {identity, {In("base"), In("a.quillet"), In("backup")}};
    }

    std::unique_ptr<QTemporaryDir> d_folder;
};

void TestBaseFile::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    Write_File(In("a.quillet"), Content());
}

void TestBaseFile::cleanup()
{
    d_folder.reset();
}

void TestBaseFile::pages_and_images_are_found_by_revision_and_id()
{
    const TBaseFile base = Base();
    QVERIFY(base.Exists());
    QCOMPARE(base.Identity().path, In("a.quillet"));
    QVERIFY(base.Find_Page(revision));
    QCOMPARE(base.Find_Page(revision)->items.offset, Place().items.offset);
    QVERIFY(base.Find_Image(image_id));
    QCOMPARE(base.Find_Image(image_id)->image.offset, qint64{4});
    QVERIFY(!base.Find_Page(image_id));
    QVERIFY(!base.Find_Image(revision));
}

void TestBaseFile::without_a_file_there_is_nothing()
{
    TBaseFile base;
    QVERIFY(!base.Exists());
    QVERIFY(!base.Is_Intact());
    base.Protect(In("base"));
    QVERIFY(!base.Is_Protected());
    QVERIFY(base.Sync());
    QCOMPARE(Entries(d_folder->path()), QStringList{"a.quillet"});
}

void TestBaseFile::a_file_that_changed_after_its_stamp_is_no_base()
{
    const TFileStamp stamp = TFileStamp::Of(In("a.quillet"));
    Write_File(In("a.quillet"), Content() + "more");
    QVERIFY(!TBaseFile(In("a.quillet"), stamp, {Place()}).Exists());
}

void TestBaseFile::a_protected_file_survives_its_deletion_and_replacement()
{
    TBaseFile base = Base();
    base.Protect(In("base"));
    QVERIFY(base.Is_Protected());
    QVERIFY(QFile::remove(In("a.quillet")));
    QVERIFY(base.Is_Intact());
    QVERIFY(base.Sync());
    Write_File(In("a.quillet"), "another file");
    QVERIFY(base.Is_Intact());
    QCOMPARE(Read_File(In("base")), Content());
}

void TestBaseFile::the_target_of_a_symbolic_link_is_protected()
{
    QVERIFY(QFile::link(In("a.quillet"), In("link")));
    TBaseFile base(In("link"), TFileStamp::Of(In("link")), {Place()});
    base.Protect(In("base"));
    QVERIFY(base.Is_Protected());
    QVERIFY(!QFileInfo(In("base")).isSymLink());
    QCOMPARE(Read_File(In("base")), Content());
}

void TestBaseFile::a_file_that_was_replaced_before_is_not_protected_data()
{
    QTest::addColumn<QString>("by");
    for (const char* const by : {"nothing", "file", "equal file", "FIFO", "folder"})
        QTest::newRow(by) << by;
}

void TestBaseFile::a_file_that_was_replaced_before_is_not_protected()
{
    QFETCH(QString, by);
    TBaseFile base = Base();
    const QString path = In("a.quillet");
    QVERIFY(QFile::rename(path, In("moved")));
    if (by == "file")
        Write_File(path, "another");
    else if (by == "equal file")
        Write_File(path, Content());
    else if (by == "FIFO")
        QVERIFY(mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    else if (by == "folder")
        QVERIFY(QDir().mkdir(path));
    base.Protect(In("base"));
    QVERIFY(!base.Is_Protected());
    QVERIFY(!base.Is_Intact());
    QVERIFY(!QFile::exists(In("base")));
    // The work refers to it all the same, until it has copies of everything.
    QVERIFY(base.Exists());
}

void TestBaseFile::a_file_on_another_file_system_is_not_protected()
{
    const QTemporaryDir other("/dev/shm/quillet-XXXXXX");
    const QString path = other.filePath("a.quillet");
    Write_File(path, Content());
    struct stat here = {};
    struct stat there = {};
    QVERIFY(stat(QFile::encodeName(In("a.quillet")).constData(), &here) == 0);
    QVERIFY(stat(QFile::encodeName(path).constData(), &there) == 0);
    QVERIFY2(here.st_dev != there.st_dev, "the temporary folder must not be in /dev/shm");
    TBaseFile base(path, TFileStamp::Of(path), {Place()});
    base.Protect(In("base"));
    QVERIFY(!base.Is_Protected());
    QVERIFY(base.Is_Intact());
    QVERIFY(base.Sync());
    QVERIFY(!QFile::exists(In("base")));
}

void TestBaseFile::an_overwritten_file_is_not_intact_data()
{
    QTest::addColumn<bool>("is_protected");
    QTest::newRow("protected") << true;
    QTest::newRow("not protected") << false;
}

void TestBaseFile::an_overwritten_file_is_not_intact()
{
    QFETCH(bool, is_protected);
    TBaseFile base = Base();
    if (is_protected)
        base.Protect(In("base"));
    QCOMPARE(base.Is_Protected(), is_protected);
    QVERIFY(base.Is_Intact());
    QFile file(In("a.quillet"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    // The size stays the same; the time has a resolution of some milliseconds.
    QTest::qSleep(20);
    file.write("x");
    file.close();
    QVERIFY(!base.Is_Intact());
}

void TestBaseFile::an_unprotected_file_is_intact_while_it_is_unchanged()
{
    const TBaseFile base = Base();
    QVERIFY(base.Is_Intact());
    QVERIFY(QFile::remove(In("a.quillet")));
    QVERIFY(!base.Is_Intact());
}

void TestBaseFile::parts_are_read_from_the_first_candidate_that_has_them_data()
{
    QTest::addColumn<QString>("candidate");
    QTest::addColumn<QByteArray>("others");
    const QByteArray content = Content();
    QByteArray other_image = content;
    other_image[4] = 'I';
    QByteArray other_end = content;
    other_end[3 + image.size()] = 'D';
    QByteArray other_length = content;
    other_length[0] = other_length[0] ^ 1;
    other_length[4 + image.size() / 2] = 'x';
    for (const char* const candidate : {"base", "a.quillet", "backup"}) {
        QTest::addRow("%s, others missing", candidate) << candidate << QByteArray();
        QTest::addRow("%s, others longer", candidate) << candidate << content + 'x';
        QTest::addRow("%s, others shorter", candidate) << candidate << content.chopped(1);
        QTest::addRow("%s, others with another image", candidate) << candidate << other_image;
        QTest::addRow("%s, others with another end", candidate) << candidate << other_end;
        QTest::addRow("%s, others with an image of another length", candidate)
            << candidate << other_length;
        QTest::addRow("%s, others shifted", candidate) << candidate << "x" + content.chopped(1);
    }
}

void TestBaseFile::parts_are_read_from_the_first_candidate_that_has_them()
{
    QFETCH(QString, candidate);
    QFETCH(QByteArray, others);
    const TFileIdentity identity = Base().Identity();
    for (const char* const name : {"base", "a.quillet", "backup"}) {
        QFile::remove(In(name));
        const QByteArray& content = name == candidate ? Content() : others;
        if (!content.isEmpty())
            Write_File(In(name), content);
    }
    const TBaseReader reader = Reader(identity);
    QCOMPARE(reader.Read_Image(Place().image, Place().image_ends).value_or("none"), image);
    QCOMPARE(reader.Read_Items(Place().items, Place().items_digest).value_or("none"), items);
}

void TestBaseFile::the_unchanged_file_is_preferred()
{
    const TFileIdentity identity = Base().Identity();
    QByteArray other_version = Content();
    other_version.replace("Quillet", "Another");
    Write_File(In("base"), other_version);
    QCOMPARE(Reader(identity).Read_Items(Place().items, Place().items_digest).value_or("none"),
             items);
    QVERIFY(QFile::rename(In("a.quillet"), In("backup")));
    QCOMPARE(Reader(identity).Read_Items(Place().items, Place().items_digest).value_or("none"),
             items);
}

void TestBaseFile::a_damaged_part_does_not_affect_the_others()
{
    QByteArray damaged = Content();
    damaged[4] = 'x';
    Write_File(In("a.quillet"), damaged);
    const TBaseReader reader = Reader(Base().Identity());
    QVERIFY(!reader.Read_Image(Place().image, Place().image_ends));
    QCOMPARE(reader.Read_Items(Place().items, Place().items_digest).value_or("none"), items);
}

void TestBaseFile::labels_of_another_version_of_equal_size_are_not_read()
{
    const TFileIdentity identity = Base().Identity();
    QByteArray other_version = Content();
    other_version[other_version.size() - 2] = other_version[other_version.size() - 2] ^ 1;
    Write_File(In("a.quillet"), other_version);
    const TBaseReader reader = Reader(identity);
    QVERIFY(!reader.Read_Items(Place().items, Place().items_digest));
    QCOMPARE(reader.Read_Image(Place().image, Place().image_ends).value_or("none"), image);
    Write_File(In("backup"), Content());
    QCOMPARE(Reader(identity).Read_Items(Place().items, Place().items_digest).value_or("none"),
             items);
}

void TestBaseFile::a_part_that_no_candidate_has_is_missing()
{
    const TFileIdentity identity = Base().Identity();
    const TBaseReader reader = Reader(identity);
    QVERIFY(!reader.Read_Items({Content().size() - 3, 10}, Place().items_digest));
    QVERIFY(!reader.Read_Items({-1, 0}, Place().items_digest));
    // The size of the file is right, but it ends within the part.
    QByteArray too_long = Content();
    too_long[4 + image.size()] = static_cast<char>(items.size() + 1);
    Write_File(In("a.quillet"), too_long);
    QVERIFY(!Reader(identity).Read_Items({Place().items.offset, items.size() + 1},
                                         Place().items_digest));
    QVERIFY(QFile::remove(In("a.quillet")));
    QVERIFY(!Reader(identity).Read_Items(Place().items, Place().items_digest));
    QVERIFY(!Reader(identity).Read_Image(Place().image, Place().image_ends));
}

QTEST_MAIN(TestBaseFile)
#include "test_basefile.moc"
