// Differences between documents, each in one line of text.

#include "support/project.h"
#include "support/support.h"

#include "src/format/document.h"
#include "src/format/documentdiff.h"

#include <QTest>

#include <memory>

using Support::Label;
using Support::Picture;

namespace {

using TPages = std::vector<TFilePage>;

QString Text_Of(const QJsonValue& value)
{
    return value.toVariant().toString();
}

/// For example "changed 1/2 name #7 (value 3): text A -> B".
QString In_Words(const TDifference& difference)
{
    const char* const kinds[] = {"changed", "added", "removed", "moved"};
    QString words = QString("%1 %2/%3 %4")
                        .arg(kinds[static_cast<int>(difference.kind)])
                        .arg(difference.left_page)
                        .arg(difference.right_page)
                        .arg(difference.page_name);
    if (difference.label_id)
        words += QString(" #%1 (value %2)").arg(*difference.label_id).arg(difference.label_value);
    if (!difference.property.isEmpty())
        words += ": " + difference.property;
    if (!difference.left.isNull())
        words += QString(" %1 -> %2").arg(Text_Of(difference.left), Text_Of(difference.right));
    if (difference.pixels)
        words += QString(" %1 pixels").arg(*difference.pixels);
    return words.simplified();
}

/// A new document restarts the page ids, so each is complete before the next one is made.
std::unique_ptr<TDocument> Document_Of(const TPages& pages)
{
    auto document = std::make_unique<TDocument>();
    for (const TFilePage& page : pages)
        document->Add_Page(page);
    return document;
}

QStringList Differences(const TDocument& left, const TDocument& right)
{
    QStringList lines;
    for (const TDifference& difference : DocumentDiff::Compare(left, right))
        lines += In_Words(difference);
    return lines;
}

QStringList Differences(const TPages& left, const TPages& right)
{
    return Differences(*Document_Of(left), *Document_Of(right));
}

TFilePage Page(const QString& name, const TPageImage& image = TPageImage(),
               const std::vector<TDataItem>& items = {})
{
    return {name, image, items};
}

/// Pages without images, one for each letter.
TPages Named(const QString& names)
{
    TPages pages;
    for (const QChar name : names)
        pages.push_back(Page(name));
    return pages;
}

QStringList Image_Differences(const TPageImage& left, const TPageImage& right)
{
    return Differences({Page("a", left)}, {Page("a", right)});
}

QStringList Label_Differences(const std::vector<TDataItem>& left,
                              const std::vector<TDataItem>& right)
{
    return Differences({Page("a", TPageImage(), left)}, {Page("a", TPageImage(), right)});
}

} // namespace

class TestDocumentDiff : public QObject
{
    Q_OBJECT

private slots:
    void equal_documents_have_no_differences()
    {
        const TPages pages = {Page("a", Picture(20, 10), {Label(1, 2, "x", 4, {5, 6})}),
                              Page("b", Picture(10, 10)), Page("a")};
        QCOMPARE(Differences(pages, pages), QStringList());
        QCOMPARE(Differences(TPages(), TPages()), QStringList());
    }

    void settings_are_compared()
    {
        const auto left = Document_Of({});
        const auto right = Document_Of({});
        left->appearance = {32, "#ff0000", "one", "two"};
        right->appearance = {33, "#00ff00", "three", "four"};
        QCOMPARE(Differences(*left, *right),
                 QStringList({"changed 0/0 : label_size 32 -> 33",
                              "changed 0/0 : label_color #ff0000 -> #00ff00",
                              "changed 0/0 : header_1 one -> three",
                              "changed 0/0 : header_2 two -> four"}));
    }

    void pages_are_added_and_removed()
    {
        QCOMPARE(Differences(Named("abc"), Named("bde")),
                 QStringList({"removed 1/0 a", "removed 3/0 c", "added 0/2 d", "added 0/3 e"}));
    }

    void pages_with_the_same_name_correspond_in_their_order()
    {
        const QImage first = Picture(20, 10, 1);
        const QImage second = Picture(30, 10, 2);
        QCOMPARE(Differences({Page("a", first), Page("a", second)},
                             {Page("a", first), Page("a", second), Page("a", first)}),
                 QStringList({"added 0/3 a"}));
    }

    void a_renamed_page_has_the_same_image()
    {
        const QImage image = Picture(20, 10);
        QCOMPARE(Differences({Page("x"), Page("a", image), Page("b", image)},
                             {Page("c", image), Page("d", image), Page("x")}),
                 QStringList(
                     {"moved 1/3 x", "changed 2/1 a: name a -> c", "changed 3/2 b: name b -> d"}));
    }

    void pages_without_an_image_are_not_renamed()
    {
        QCOMPARE(Differences(Named("a"), Named("b")),
                 QStringList({"removed 1/0 a", "added 0/1 b"}));
    }

    void a_page_keeps_its_name_even_if_another_has_its_image()
    {
        const QImage image = Picture(20, 10, 1);
        const QImage other = Picture(20, 12, 2);
        QCOMPARE(Differences({Page("a", image)}, {Page("b", image), Page("a", other)}),
                 QStringList({"changed 1/2 a: image 20 x 10 -> 20 x 12", "added 0/1 b"}));
    }

    void the_fewest_pages_move_data()
    {
        QTest::addColumn<QString>("right");
        QTest::addColumn<QString>("moved");
        QTest::newRow("first to the end") << "bcdea"
                                          << "a";
        QTest::newRow("last to the beginning") << "eabcd"
                                               << "e";
        QTest::newRow("neighbours") << "bacde"
                                    << "a";
        QTest::newRow("one in the middle") << "abdec"
                                           << "c";
        QTest::newRow("two") << "dabec"
                             << "cd";
        QTest::newRow("backwards") << "edcba"
                                   << "abcd";
        QTest::newRow("around a removed page") << "bdea"
                                               << "a";
        QTest::newRow("a lower end is better") << "cdabe"
                                               << "ab";
    }

    void the_fewest_pages_move()
    {
        QFETCH(const QString, right);
        QString moved;
        for (const TDifference& difference :
             DocumentDiff::Compare(*Document_Of(Named("abcde")), *Document_Of(Named(right)))) {
            if (difference.kind == TDifference::TKind::Moved)
                moved += difference.page_name;
        }
        QTEST(moved, "moved");
    }

    void each_property_of_a_label_is_compared()
    {
        QCOMPARE(Label_Differences({Label(7, 1, "A", 1, {2, 3})}, {Label(7, 4, "B", 2, {5, 6})}),
                 QStringList({"changed 1/1 a #7 (value 1): value 1 -> 4",
                              "changed 1/1 a #7 (value 1): text A -> B",
                              "changed 1/1 a #7 (value 1): border square -> ellipse",
                              "changed 1/1 a #7 (value 1): x 2 -> 5",
                              "changed 1/1 a #7 (value 1): y 3 -> 6"}));
    }

    void labels_are_added_and_removed()
    {
        const TDataItem first = Label(1, 10, "", 1, {});
        const TDataItem second = Label(2, 20, "", 1, {});
        const TDataItem third = Label(3, 30, "", 1, {});
        QCOMPARE(Label_Differences({first, second}, {second, third}),
                 QStringList({"removed 1/1 a #1 (value 10)", "added 1/1 a #3 (value 30)"}));
    }

    void another_order_of_labels_is_one_difference_of_the_page()
    {
        const TDataItem first = Label(1, 10, "", 1, {});
        const TDataItem second = Label(2, 20, "", 1, {});
        const TDataItem third = Label(3, 30, "", 1, {});
        QCOMPARE(Label_Differences({first, second, third}, {third, second, first}),
                 QStringList({"moved 1/1 a: labels"}));
        QCOMPARE(Label_Differences({first, second, third}, {second, first, third}),
                 QStringList({"moved 1/1 a: labels"}));
        QCOMPARE(Label_Differences({first, second, third}, {first, third}),
                 QStringList({"removed 1/1 a #2 (value 20)"}));
    }

    void a_page_after_one_with_labels_has_no_label()
    {
        const std::vector<TDataItem> items = {Label(1, 10, "", 1, {})};
        QCOMPARE(Differences({Page("a", TPageImage(), items), Page("b")},
                             {Page("a", TPageImage(), items)}),
                 QStringList({"removed 2/0 b"}));
    }

    void images_with_the_same_pixels_are_equal()
    {
        const QImage picture = Picture(20, 10);
        QCOMPARE(
            Image_Differences(TPageImage::From_Bytes(Support::Encoded(picture, "BMP")), picture),
            QStringList());
        // Pixels that are invisible on both sides have no colour.
        QImage left(4, 3, QImage::Format_ARGB32);
        left.fill(qRgba(255, 0, 0, 0));
        QImage right = left;
        right.fill(qRgba(0, 255, 0, 0));
        QCOMPARE(Image_Differences(left, right), QStringList());
    }

    void different_pixels_are_counted_data()
    {
        QTest::addColumn<QImage::Format>("left_format");
        QTest::addColumn<QImage::Format>("right_format");
        QTest::newRow("8 bits") << QImage::Format_RGB32 << QImage::Format_ARGB32;
        QTest::newRow("left has 16 bits") << QImage::Format_RGBA64 << QImage::Format_RGB32;
        QTest::newRow("right has 16 bits") << QImage::Format_RGB32 << QImage::Format_RGBA64;
    }

    void different_pixels_are_counted()
    {
        QFETCH(const QImage::Format, left_format);
        QFETCH(const QImage::Format, right_format);
        QImage left(5, 4, QImage::Format_RGB32);
        left.fill(Qt::white);
        QImage right = left;
        for (const QPoint point : {QPoint(0, 0), QPoint(4, 0), QPoint(2, 3)})
            right.setPixelColor(point, Qt::black);
        QCOMPARE(Image_Differences(left.convertToFormat(left_format),
                                   right.convertToFormat(right_format)),
                 QStringList({"changed 1/1 a: image 3 pixels"}));
    }

    void the_lowest_of_16_bits_counts()
    {
        QImage left(2, 2, QImage::Format_RGBA64);
        left.fill(Qt::white);
        QImage right = left;
        right.setPixelColor(1, 1, QColor(QRgba64::fromRgba64(0xfffe, 0xffff, 0xffff, 0xffff)));
        const QStringList one_pixel{"changed 1/1 a: image 1 pixels"};
        QCOMPARE(Image_Differences(left, right), one_pixel);
        const QImage white = left.convertToFormat(QImage::Format_RGB32);
        QCOMPARE(Image_Differences(white, right), one_pixel);
        QCOMPARE(Image_Differences(right, white), one_pixel);
    }

    void images_of_other_sizes_differ_in_their_size()
    {
        QCOMPARE(Image_Differences(Picture(20, 10), Picture(10, 10)),
                 QStringList({"changed 1/1 a: image 20 x 10 -> 10 x 10"}));
        QCOMPARE(Image_Differences(TPageImage(), Picture(10, 10)),
                 QStringList({"changed 1/1 a: image no image -> 10 x 10"}));
    }

    void undecodable_images_with_other_bytes_differ_in_no_pixel()
    {
        QCOMPARE(Image_Differences(TPageImage::From_Bytes("text"), TPageImage::From_Bytes("more")),
                 QStringList({"changed 1/1 a: image 0 pixels"}));
    }
};

QTEST_MAIN(TestDocumentDiff)
#include "test_documentdiff.moc"
