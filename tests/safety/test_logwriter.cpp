// What a work log contains after which change, and how much is written for it.

#include "src/format/projectfile.h"
#include "src/safety/logreader.h"
#include "src/safety/logwriter.h"
#include "support/support.h"
#include "support/worklogs.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <limits>
#include <sys/resource.h>

using Support::Add_Page;
using Support::Byte_Difference;
using Support::Picture;
using Support::Project_Of;
using Support::Read_File;
using Support::Recovered;
using Support::Save_As_Base;
using Support::State_Of;

using TChange = std::function<void(TDocument*)>;
Q_DECLARE_METATYPE(TChange)

class TestLogWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_document_without_a_base_is_stored();
    void a_document_without_pages_is_stored();
    void unchanged_pages_refer_to_the_base();
    void a_changed_page_no_longer_needs_the_base();
    void an_image_of_the_base_stays_there_when_labels_change();
    void undo_back_to_the_base_drops_the_labels();
    void a_change_of_one_label_writes_two_rows();
    void an_added_label_writes_two_rows();
    void an_update_without_changes_writes_nothing();
    void a_selection_writes_nothing();
    void a_label_that_is_put_back_in_the_middle_keeps_its_place();
    void order_names_and_appearance_are_stored_data();
    void order_names_and_appearance_are_stored();
    void an_image_that_two_pages_share_is_stored_once();
    void an_image_that_comes_back_is_not_stored_again();
    void the_png_of_an_image_replaces_the_imported_bytes_data();
    void the_png_of_an_image_replaces_the_imported_bytes();
    void an_image_that_is_encoded_before_the_log_exists_is_stored_as_png();
    void the_png_of_an_image_that_the_document_does_not_have_is_not_stored();
    void a_page_with_many_labels_is_stored();
    void pages_that_fill_rows_of_labels_are_stored_data();
    void pages_that_fill_rows_of_labels_are_stored();
    void texts_survive_as_far_as_a_project_allows();
    void the_position_of_a_label_survives_data();
    void the_position_of_a_label_survives();
    void only_pages_that_document_and_list_have_are_stored();
    void a_failed_update_leaves_the_previous_one();
    void an_update_after_a_failure_writes_everything();
    void references_are_stored_one_by_one();
    void all_references_to_labels_are_stored_at_once();
    void references_of_a_changed_page_stay_until_the_next_update_data();
    void references_of_a_changed_page_stay_until_the_next_update();
    void references_stay_after_a_failed_update();
    void a_long_log_is_shortened_unless_it_contains_images();
    void any_walk_of_changes_is_recovered_data();
    void any_walk_of_changes_is_recovered();

private:
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Log() const { return In("a.log"); }
    bool Update(const TBaseFile& base = TBaseFile())
    {
        return d_writer->Update(State_Of(*d_document), base, {"/a.quillet"});
    }
    /// Number of rows that an update writes; -1 if it fails.
    qint64 Rows_Of_Update(const TBaseFile& base = TBaseFile())
    {
        const qint64 before = d_writer->Written_Rows();
        return Update(base) ? d_writer->Written_Rows() - before : -1;
    }
    /// How the recovered document differs from the present one; empty if it does not.
    QString Difference() const
    {
        return Byte_Difference(Recovered(Log()), Project_Of(*d_document));
    }
    TData& Data() { return d_document->data; }

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TDocument> d_document;
    std::unique_ptr<TLogWriter> d_writer;
};

void TestLogWriter::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_document = std::make_unique<TDocument>();
    for (int page = 1; page <= 3; ++page)
        Add_Page(d_document.get(), QString("Page %1").arg(page), Picture(20, 10, page), 5);
    d_writer = std::make_unique<TLogWriter>();
    QVERIFY(d_writer->Create(Log()));
}

void TestLogWriter::cleanup()
{
    d_writer.reset();
    d_document.reset();
    d_folder.reset();
}

void TestLogWriter::a_document_without_a_base_is_stored()
{
    QVERIFY(!d_writer->Has_Document());
    QVERIFY(Update());
    QVERIFY(d_writer->Has_Document());
    QVERIFY(!d_writer->Has_References());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::a_document_without_pages_is_stored()
{
    d_document = std::make_unique<TDocument>();
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::unchanged_pages_refer_to_the_base()
{
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    Data().Set_Active_Page(2);
    Data().Change_Item_Value(1, 100);
    QVERIFY(Update(base));
    QVERIFY(d_writer->Has_References());
    QCOMPARE(Difference(), QString());
    // No image was copied.
    QVERIFY(!Read_File(Log() + "-wal").contains(Data().Page(1).image.Source_Bytes().mid(20, 50)));
    int missing_images = 0;
    QVERIFY(QFile::remove(In("base.quillet")));
    Recovered(Log(), &missing_images);
    QCOMPARE(missing_images, 3);
}

void TestLogWriter::a_changed_page_no_longer_needs_the_base()
{
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    Data().Set_Active_Page(2);
    Data().Set_Page_Image(Picture(20, 10, 9));
    QVERIFY(Update(base));
    QVERIFY(QFile::remove(In("base.quillet")));
    int missing_images = 0;
    const QByteArray recovered = Recovered(Log(), &missing_images);
    QCOMPARE(missing_images, 2);
    QVERIFY(recovered.contains(Data().Page(2).image.Source_Bytes()));
    QVERIFY(recovered.contains("Label 5"));
}

void TestLogWriter::an_image_of_the_base_stays_there_when_labels_change()
{
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    for (int page = 1; page <= 3; ++page) {
        Data().Set_Active_Page(page);
        Data().Change_Item_Value(1, 100);
    }
    QVERIFY(Update(base));
    QVERIFY(d_writer->Has_References());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::undo_back_to_the_base_drops_the_labels()
{
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    std::vector<TPageItem> pages;
    Data().Set_Recorder([&pages](const TPageItem& page) { pages.push_back(page); });
    Data().Set_Active_Page(2);
    Data().Change_Item_Value(1, 100);
    QVERIFY(Update(base));
    std::vector<int> order = {1, 2, 3};
    Data().Swap_Pages(&order, &pages);
    // The page, the row of its labels and the time.
    QCOMPARE(Rows_Of_Update(base), qint64(3));
    QCOMPARE(Difference(), QString());
    Data().Swap_Pages(&order, &pages);
    QCOMPARE(Rows_Of_Update(base), qint64(3));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::a_change_of_one_label_writes_two_rows()
{
    QVERIFY(Update());
    const std::vector<std::function<void()>> changes = {
        [this] { Data().Change_Item_Value(3, 100); },
        [this] { Data().Change_Item_Text(3, "changed"); },
        [this] { Data().Change_Item_Border(3, 4); },
        [this] {
            Data().Change_Item_Position(3, {9, 9});
        },
        [this] { Data().Remove_Item(3); },
    };
    for (const auto& change : changes) {
        change();
        // The row with the label and the time.
        QCOMPARE(Rows_Of_Update(), qint64(2));
        QCOMPARE(Difference(), QString());
    }
}

void TestLogWriter::an_added_label_writes_two_rows()
{
    QVERIFY(Update());
    Data().Add_Item({77, 1, "new", 0, {1, 2}, false});
    QCOMPARE(Rows_Of_Update(), qint64(2));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::an_update_without_changes_writes_nothing()
{
    QVERIFY(Update());
    QCOMPARE(Rows_Of_Update(), qint64(0));
}

void TestLogWriter::a_selection_writes_nothing()
{
    QVERIFY(Update());
    Data().Change_Item_Selection(1, true);
    Data().Set_Active_Page(1);
    QCOMPARE(Rows_Of_Update(), qint64(0));
}

void TestLogWriter::a_label_that_is_put_back_in_the_middle_keeps_its_place()
{
    QVERIFY(Update());
    for (const int id : {3, 1, 5}) {
        std::vector<TPageItem> pages;
        Data().Set_Recorder([&pages](const TPageItem& page) { pages.push_back(page); });
        Data().Remove_Item(id);
        QVERIFY(Update());
        QCOMPARE(Difference(), QString());
        std::vector<int> order = {1, 2, 3};
        Data().Swap_Pages(&order, &pages);
        QVERIFY(Update());
        QCOMPARE(Difference(), QString());
    }
}

void TestLogWriter::order_names_and_appearance_are_stored_data()
{
    QTest::addColumn<TChange>("change");
    QTest::addColumn<int>("rows");
    const auto row = [](const char* name, const TChange& change, int rows) {
        QTest::newRow(name) << change << rows;
    };
    row(
        "name", [](TDocument* document) { document->pages[1].name = "Renamed"; }, 2);
    row(
        "name beyond Latin-1", [](TDocument* document) { document->pages[0].name = "План"; }, 2);
    row(
        "order", [](TDocument* document) { std::swap(document->pages[0], document->pages[2]); }, 3);
    row(
        "page removed",
        [](TDocument* document) {
            document->data.Remove_Page(3);
            document->pages.pop_back();
        },
        3);
    row(
        "page added", [](TDocument* document) { document->Add_Page("New", TPageImage()); }, 2);
    row(
        "label size", [](TDocument* document) { document->appearance.label_size = 99; }, 1);
    row(
        "colour", [](TDocument* document) { document->appearance.color_name = "#010203"; }, 1);
    row(
        "first header", [](TDocument* document) { document->appearance.header_1 = "Kopf"; }, 1);
    row(
        "second header", [](TDocument* document) { document->appearance.header_2 = "Ж"; }, 1);
}

void TestLogWriter::order_names_and_appearance_are_stored()
{
    QFETCH(const TChange, change);
    QFETCH(const int, rows);
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    Data().Set_Active_Page(3);
    Data().Change_Item_Value(1, 100);
    QVERIFY(Update(base));
    change(d_document.get());
    QCOMPARE(Rows_Of_Update(base), qint64(rows));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::an_image_that_two_pages_share_is_stored_once()
{
    QVERIFY(Update());
    const TPageImage image(Picture(30, 30, 5));
    d_document->Add_Page("one", image);
    d_document->Add_Page("two", image);
    // An image, two pages and the time.
    QCOMPARE(Rows_Of_Update(), qint64(4));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::an_image_that_comes_back_is_not_stored_again()
{
    QVERIFY(Update());
    const TPageImage image = Data().Page(2).image;
    Data().Set_Active_Page(2);
    Data().Set_Page_Image(TPageImage());
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
    Data().Set_Page_Image(image.Encoded());
    QCOMPARE(Rows_Of_Update(), qint64(2));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::the_png_of_an_image_replaces_the_imported_bytes_data()
{
    QTest::addColumn<bool>("has_base");
    QTest::newRow("imported") << false;
    QTest::newRow("from the base") << true;
}

void TestLogWriter::the_png_of_an_image_replaces_the_imported_bytes()
{
    QFETCH(bool, has_base);
    const QByteArray bytes = Support::Encoded(Picture(20, 10, 9), "BMP");
    Data().Set_Active_Page(2);
    Data().Set_Page_Image(TPageImage::From_Bytes(bytes));
    TBaseFile base;
    if (has_base) {
        Support::Write_File(In("base.quillet"), Project_Of(*d_document));
        TFileContent content = ProjectFile::Read(Read_File(In("base.quillet")));
        TFilePlaces places;
        for (TFilePage& page : *content.pages) {
            places.push_back(page.place);
            places.back().image_id = Data().Page(static_cast<int>(places.size())).image.Id();
        }
        base = TBaseFile(In("base.quillet"), TFileStamp::Of(In("base.quillet")), places);
    }
    QVERIFY(Update(base));
    QCOMPARE(Difference(), QString());
    const TPageImage image = Data().Page(2).image;
    const QByteArray png = image.Png();
    QVERIFY(d_writer->Store_Png(image));
    const TFileContent content = ProjectFile::Read(Recovered(Log()));
    QCOMPARE(content.pages->at(1).image.Source_Bytes(), png);
    QCOMPARE(content.pages->at(1).items.size(), std::size_t{5});
    // Once only.
    QCOMPARE(Rows_Of_Update(base), qint64{0});
}

void TestLogWriter::an_image_that_is_encoded_before_the_log_exists_is_stored_as_png()
{
    Data().Set_Active_Page(2);
    Data().Set_Page_Image(TPageImage::From_Bytes(Support::Encoded(Picture(20, 10, 9), "BMP")));
    const QByteArray png = Data().Page(2).image.Png();
    QVERIFY(Update());
    const TFileContent content = ProjectFile::Read(Recovered(Log()));
    QCOMPARE(content.pages->at(1).image.Source_Bytes(), png);
}

void TestLogWriter::the_png_of_an_image_that_the_document_does_not_have_is_not_stored()
{
    QVERIFY(Update());
    const qint64 rows = d_writer->Written_Rows();
    QVERIFY(d_writer->Store_Png(Picture(20, 10, 9)));
    QCOMPARE(d_writer->Written_Rows(), rows);
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::a_page_with_many_labels_is_stored()
{
    d_document = std::make_unique<TDocument>();
    constexpr int count = 10000;
    Add_Page(d_document.get(), "many", TPageImage(), count);
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
    Data().Change_Item_Value(count / 2, 0);
    QCOMPARE(Rows_Of_Update(), qint64(2));
    int value = 0;
    Data().Number_Items(1, false, [&value] { return value += 3; });
    // 156 rows of 64 labels, a row of 16 labels, and the time.
    QCOMPARE(Rows_Of_Update(), qint64(158));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::pages_that_fill_rows_of_labels_are_stored_data()
{
    // A row has up to 64 labels.
    QTest::addColumn<int>("labels");
    for (const int labels : {0, 1, 63, 64, 65, 127, 128, 129})
        QTest::addRow("%d", labels) << labels;
}

void TestLogWriter::pages_that_fill_rows_of_labels_are_stored()
{
    QFETCH(const int, labels);
    d_document = std::make_unique<TDocument>();
    Add_Page(d_document.get(), "page", TPageImage(), labels);
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
    Data().Add_Item({1000, 1, "added", 0, {1, 2}, false});
    QCOMPARE(Rows_Of_Update(), qint64(2));
    QCOMPARE(Difference(), QString());
    Data().Remove_Item(1000);
    QCOMPARE(Rows_Of_Update(), qint64(2));
    QCOMPARE(Difference(), QString());
    Data().Remove_Item(1);
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::texts_survive_as_far_as_a_project_allows()
{
    Data().Change_Item_Text(1, QString("lone ") + QChar(0xd800) + QChar(0) + "\x01 end");
    Data().Change_Item_Text(2, "  two\n\nlines \t ");
    Data().Change_Item_Text(3, QString::fromUtf8("Насос \xf0\x9f\x98\x80"));
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::the_position_of_a_label_survives_data()
{
    QTest::addColumn<double>("coordinate");
    for (const double coordinate : {0.1, -1e300, 1e-300, 12345678.905, 3.0})
        QTest::newRow(qPrintable(QString::number(coordinate))) << coordinate;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
}

void TestLogWriter::the_position_of_a_label_survives()
{
    QFETCH(const double, coordinate);
    Data().Change_Item_Position(1, {coordinate, -coordinate});
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::only_pages_that_document_and_list_have_are_stored()
{
    d_document->pages.insert(d_document->pages.begin() + 1, {99, "not there yet"});
    Data().Add_Page();
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::a_failed_update_leaves_the_previous_one()
{
    const QByteArray before = Project_Of(*d_document);
    const Support::TChildResult result = Support::Run_In_Child([this] {
        if (!Update())
            return 1;
        Support::Limit_File_Size(QFileInfo(Log() + "-wal").size() + 3000);
        for (int id = 100; id < 300; ++id)
            Data().Add_Item({id, id, QString(50, 'x'), 0, {}, false});
        return Update() || !d_writer->Has_Document() ? 2 : 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Byte_Difference(Recovered(Log()), before), QString());
}

void TestLogWriter::an_update_after_a_failure_writes_everything()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
        Data().Change_Item_Value(1, 100);
        if (!Update(base))
            return 1;
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        // Unlike Limit_File_Size, for a while.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit less = {static_cast<rlim_t>(QFileInfo(Log() + "-wal").size()) + 3000,
                             limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &less);
        Add_Page(d_document.get(), "New", Picture(99, 99, 7), 50);
        if (Update(base))
            return 2;
        setrlimit(RLIMIT_FSIZE, &limit);
        Data().Remove_Item(3);
        if (!Update(base))
            return 3;
        Support::Write_File(In("expected"), Project_Of(*d_document));
        return 0;
    });
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(Byte_Difference(Recovered(Log()), Read_File(In("expected"))), QString());
}

void TestLogWriter::references_are_stored_one_by_one()
{
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    QVERIFY(Update(base));
    const QByteArray expected = Project_Of(*d_document);
    // Three times labels, three images.
    for (int round = 0; round < 6; ++round) {
        QVERIFY(d_writer->Has_References());
        QVERIFY(d_writer->Store_Reference(Data()));
        QCOMPARE(Byte_Difference(Recovered(Log()), expected), QString());
    }
    QVERIFY(!d_writer->Has_References());
    QVERIFY(d_writer->Store_Reference(Data()));
    QVERIFY(QFile::remove(In("base.quillet")));
    QCOMPARE(Byte_Difference(Recovered(Log()), expected), QString());
}

void TestLogWriter::all_references_to_labels_are_stored_at_once()
{
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    QVERIFY(Update(base));
    const QByteArray before = Project_Of(*d_document);
    Data().Set_Active_Page(2);
    Data().Change_Item_Value(1, 100);
    QVERIFY(d_writer->Store_Labels(Data()));
    // A page that has changed waits for its update.
    QCOMPARE(Byte_Difference(Recovered(Log()), before), QString());
    QVERIFY(Update());
    // The images are still references.
    QVERIFY(d_writer->Has_References());
    QCOMPARE(Difference(), QString());
    QVERIFY(QFile::remove(In("base.quillet")));
    const TFileContent content = ProjectFile::Read(Recovered(Log()));
    for (const TFilePage& page : content.pages.value())
        QCOMPARE(page.items.size(), size_t(5));
}

void TestLogWriter::references_of_a_changed_page_stay_until_the_next_update_data()
{
    QTest::addColumn<TChange>("change");
    QTest::newRow("page removed") << TChange([](TDocument* document) {
        document->data.Remove_Page(2);
        document->pages.erase(document->pages.begin() + 1);
    });
    QTest::newRow("image replaced") << TChange([](TDocument* document) {
        document->data.Set_Active_Page(2);
        document->data.Set_Page_Image(Picture(20, 10, 9));
    });
}

void TestLogWriter::references_of_a_changed_page_stay_until_the_next_update()
{
    QFETCH(TChange, change);
    const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
    QVERIFY(Update(base));
    const QByteArray before = Project_Of(*d_document);
    change(d_document.get());
    int stored = 0;
    while (stored < 6 && d_writer->Store_Reference(Data()))
        ++stored;
    QVERIFY(stored < 6);
    QVERIFY(d_writer->Has_References());
    QCOMPARE(Byte_Difference(Recovered(Log()), before), QString());
    QVERIFY(Update(base));
    while (d_writer->Has_References())
        QVERIFY(d_writer->Store_Reference(Data()));
    QVERIFY(QFile::remove(In("base.quillet")));
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::references_stay_after_a_failed_update()
{
    const Support::TChildResult result = Support::Run_In_Child([this] {
        const TBaseFile base = Save_As_Base(*d_document, In("base.quillet"));
        if (!Update(base))
            return 1;
        Support::Limit_File_Size(100);
        for (int page = 1; page <= 3; ++page) {
            Data().Set_Active_Page(page);
            Data().Set_Page_Image(Picture(20, 10, 10 + page));
        }
        if (Update(base))
            return 2;
        return d_writer->Has_References() && !d_writer->Store_Reference(Data()) ? 0 : 3;
    });
    QCOMPARE(result.exit_code, 0);
}

void TestLogWriter::a_long_log_is_shortened_unless_it_contains_images()
{
    const auto size = [this] { return QFileInfo(Log() + "-wal").size(); };
    QVERIFY(Update());
    QVERIFY(d_writer->Shorten());
    QVERIFY(size() > 0);
    // Imported images stay where they are.
    QByteArray noise(6 * 1024 * 1024, '\0');
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    d_document->Add_Page("Large", TPageImage::From_Bytes(noise));
    QVERIFY(Update());
    QVERIFY(d_writer->Shorten());
    QVERIFY(size() > noise.size());
    while (size() <= 17 * 1024 * 1024) {
        for (int edit = 0; edit < 1000; ++edit) {
            Data().Set_Active_Page(1);
            Data().Change_Item_Value(1, edit);
            QVERIFY(Update());
        }
    }
    QVERIFY(d_writer->Shorten());
    QCOMPARE(size(), qint64(0));
    QCOMPARE(Difference(), QString());
    Data().Change_Item_Value(1, -1);
    QVERIFY(Update());
    QCOMPARE(Difference(), QString());
}

void TestLogWriter::any_walk_of_changes_is_recovered_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 40; ++seed)
        QTest::addRow("%u", seed) << seed;
}

void TestLogWriter::any_walk_of_changes_is_recovered()
{
    QFETCH(const quint32, seed);
    QRandomGenerator random(seed);
    const auto below = [&random](int limit) { return random.bounded(limit); };
    TBaseFile base;
    if (seed % 4 != 0)
        base = Save_As_Base(*d_document, In("base.quillet"));
    std::vector<int> order;
    std::vector<TPageItem> recorded;
    Data().Set_Recorder([&recorded](const TPageItem& page) {
        const auto is_page = [&page](const TPageItem& other) {
            return other.page_id == page.page_id;
        };
        if (std::none_of(recorded.cbegin(), recorded.cend(), is_page))
            recorded.push_back(page);
    });
    const auto change = [&] {
        std::vector<TNamedPage>& rows = d_document->pages;
        if (rows.empty() || below(12) == 0)
            Add_Page(d_document.get(), QString("Page %1").arg(below(99)), Picture(9, 9, below(9)),
                     below(6));
        const auto row = rows.begin() + below(static_cast<int>(rows.size()));
        Data().Set_Active_Page(row->page_id);
        const int id = 1 + below(8);
        switch (below(10)) {
        case 0:
            Data().Remove_Page(row->page_id);
            rows.erase(row);
            break;
        case 1:
            row->name = QString(QChar(0x3f0 + below(40)));
            break;
        case 2:
            std::swap(*row, rows.front());
            break;
        case 3:
            Data().Set_Page_Image(below(2) ? TPageImage(Picture(8, 8, below(9))) : TPageImage());
            break;
        case 4:
            d_document->appearance.header_1 = QString(QChar(0x3f0 + below(40)));
            break;
        case 5:
        case 6:
            Data().Add_Item({id, id, "new", 1, {0.125 * id, 2}, false});
            break;
        case 7:
            Data().Remove_Items({id, id + 1});
            break;
        case 8:
            Data().Change_Item_Text(id, QString(below(4), 'x'));
            break;
        default:
            Data().Number_Items(row->page_id, false, [&] { return below(3); });
        }
    };
    for (int round = 0; round < 60; ++round) {
        order.clear();
        recorded.clear();
        const std::vector<TNamedPage> rows = d_document->pages;
        for (const TPageItem& page : Data().Pages())
            order.push_back(page.page_id);
        for (int changes = 0; changes <= below(3); ++changes)
            change();
        QVERIFY(Update(base));
        if (below(3) == 0) {
            // Undo.
            Data().Swap_Pages(&order, &recorded);
            d_document->pages = rows;
            QVERIFY(Update(base));
        }
        if (below(8) == 0)
            QVERIFY(d_writer->Store_Reference(Data()));
        if (round % 10 == 9)
            QCOMPARE(Difference(), QString());
    }
}

QTEST_MAIN(TestLogWriter)
#include "test_logwriter.moc"
