// The web page as a file. Its behaviour in a browser is the subject of browser.py.

#include "support/project.h"
#include "support/support.h"

#include "src/data.h"
#include "src/webpage/markup.h"
#include "src/webpage/webpage.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QIODevice>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using Support::Label;

namespace {

/// A page of a web page.
struct TContent
{
    QString name;
    TPageImage image;
    std::vector<TDataItem> labels;
};

TWebPage Page(const std::vector<TContent>& contents)
{
    TData data;
    std::vector<TNamedPage> names;
    for (const TContent& content : contents) {
        const int page_id = data.Add_Page(content.image);
        data.Set_Active_Page(page_id);
        for (const TDataItem& label : content.labels)
            data.Add_Item(label);
        names.push_back({page_id, content.name});
    }
    return WebPage::Of(data, TAppearance(), Findings::Of(data, names), QStringLiteral("title"));
}

QString Written(const TWebPage& page)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return WebPage::Write(page, nullptr, &buffer) ? QString::fromUtf8(buffer.data()) : QString();
}

/// The first match of a pattern's group.
QString Found(const QString& html, const QString& pattern)
{
    return QRegularExpression(pattern, QRegularExpression::DotMatchesEverythingOption)
        .match(html)
        .captured(1);
}

/// The image that a web page embeds first, with the beginning of its URL.
QByteArray Embedded(const QString& html, const QByteArray& type)
{
    const QString data =
        Found(html, "<image [^>]*href=\"data:" + QString::fromLatin1(type) + ";base64,([^\"]*)\"");
    return QByteArray::fromBase64(data.toLatin1());
}

/// Refuses to store more than a number of bytes.
class TSmallDevice : public QBuffer
{
protected:
    qint64 writeData(const char* data, qint64 length) override
    {
        return size() + length > 20000 ? -1 : QBuffer::writeData(data, length);
    }
};

} // namespace

class TestWebPage : public QObject
{
    Q_OBJECT

private slots:
    void every_user_text_is_escaped()
    {
        const QString attack = QStringLiteral("<script>alert('\"&')</script>");
        const TDataItem label = Label(1, 1, attack, No_Border, QPointF(9, 9));
        TWebPage page = Page({{attack, Support::Picture(20, 20), {label}}});
        page.title = attack;
        page.subtitle = attack;
        page.findings.headings = QStringList(attack);
        page.findings.pages.front().rows.front().cells = QStringList(attack);
        const QString html = Written(page);
        QCOMPARE(html.count("<script"), 1);
        QCOMPARE(html.count("alert('\""), 0);
        // The text occurs in: title twice, subtitle, name of the page three times, text and cell in
        // tool tip and row, heading. The label itself shows "*" for a long text.
        QCOMPARE(html.count("&lt;script&gt;alert('&quot;&amp;')&lt;/script&gt;"), 11);
    }

    void characters_that_html_forbids_are_replaced()
    {
        const char32_t noncharacter = 0x1ffff;
        QCOMPARE(Markup::Escaped(QStringLiteral("a\x01\x7f\n\t\u00e9") +
                                 QString::fromUcs4(&noncharacter, 1) + QChar(0xd800)),
                 QStringLiteral("a\ufffd\ufffd\n\t\u00e9\ufffd\ufffd"));
        const char32_t treble_clef = 0x1d11e;
        QCOMPARE(Markup::Escaped(QString::fromUcs4(&treble_clef, 1)),
                 QString::fromUcs4(&treble_clef, 1));
    }

    void the_policy_allows_its_own_script_and_style_alone()
    {
        const QString html = Written(Page({{"a", Support::Picture(20, 20), {}}}));
        const QString policy = Found(html, "Content-Security-Policy\" content=\"([^\"]*)\"");
        const auto source = [&html](const QString& tag) {
            const QString content = Found(html, "<" + tag + ">(.*)</" + tag + ">");
            return "'sha256-" +
                   QString::fromLatin1(
                       QCryptographicHash::hash(content.toUtf8(), QCryptographicHash::Sha256)
                           .toBase64()) +
                   "'";
        };
        QCOMPARE(policy, "default-src 'none'; img-src data:; style-src " + source("style") +
                             "; script-src " + source("script") +
                             "; base-uri 'none'; form-action 'none'");
        QCOMPARE(html.count("style="), 0);
        QVERIFY(!html.contains(QRegularExpression("<[^>]* on[a-z]+=")));
        QVERIFY(!html.contains("http:") && !html.contains("https:"));
    }

    void images_are_embedded_as_they_are_stored_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::newRow("PNG") << QByteArray("png");
        QTest::newRow("JPEG") << QByteArray("jpeg");
    }
    void images_are_embedded_as_they_are_stored()
    {
        QFETCH(const QByteArray, format);
        const QByteArray bytes = Support::Encoded(Support::Picture(40, 30), format.constData());
        const QString html = Written(Page({{"a", TPageImage::From_Bytes(bytes), {}}}));
        QCOMPARE(Support::Byte_Difference(Embedded(html, "image/" + format), bytes), QString());
        QVERIFY(html.contains("viewBox=\"0 0 40 30\""));
    }

    void an_image_of_a_format_that_browsers_do_not_read_becomes_png()
    {
        const QImage picture = Support::Picture(40, 30);
        const QByteArray bytes = Support::Encoded(picture, "ppm");
        const QString html = Written(Page({{"a", TPageImage::From_Bytes(bytes), {}}}));
        const QImage embedded = QImage::fromData(Embedded(html, "image/png"), "png");
        QCOMPARE(Support::Difference(embedded, picture), QString());
    }

    void wider_images_are_scaled_down_and_labels_stay()
    {
        const TDataItem label = Label(1, 1, QString(), No_Border, QPointF(300, 100));
        TWebPage page = Page({{"a", Support::Picture(400, 200), {label}}});
        page.max_width = 100;
        const QString html = Written(page);
        QCOMPARE(QImage::fromData(Embedded(html, "image/png")).size(), QSize(100, 50));
        QVERIFY(html.contains("viewBox=\"0 0 400 200\""));
        QVERIFY(html.contains("transform=\"translate(300 100)\""));
        page.max_width = 400;
        QCOMPARE(QImage::fromData(Embedded(Written(page), "image/png")).size(), QSize(400, 200));
    }

    void each_line_of_a_label_is_a_text()
    {
        const TDataItem label = Label(1, 1, QStringLiteral("up\ndown"), No_Border, QPointF(20, 20));
        const QString html = Written(Page({{"a", Support::Picture(40, 40), {label}}}));
        QCOMPARE(html.count("<text "), 2);
        QVERIFY(html.contains(">up</text>") && html.contains(">down</text>"));
    }

    void a_page_without_an_image_says_so()
    {
        const QString html = Written(Page({{"a", TPageImage(), {}}}));
        QVERIFY(html.contains("This page has no image."));
        QCOMPARE(html.count("<image"), 0);
    }

    void a_label_beyond_the_edge_widens_the_page_as_in_an_exported_picture()
    {
        // A label of 32 pixels takes 37, of which 18 are before its position.
        const TDataItem label = Label(1, 1, QString(), No_Border, QPointF(0, 100));
        const QString html = Written(Page({{"a", Support::Picture(50, 60), {label}}}));
        QVERIFY(html.contains("viewBox=\"-18 0 68 119\""));
    }

    void labels_that_are_infinitely_far_away_are_listed_but_not_drawn()
    {
        const double infinity = std::numeric_limits<double>::infinity();
        const QString html =
            Written(Page({{"a",
                           Support::Picture(50, 60),
                           {Label(1, 11, QString(), No_Border, QPointF(infinity, 1)),
                            Label(2, 12, QString(), No_Border, QPointF(1e9, 1e9)),
                            Label(3, 13, QString(), No_Border, QPointF(25, 30))}}}));
        QVERIFY(html.contains("viewBox=\"0 0 50 60\""));
        QCOMPARE(html.count("class=\"label\""), 1);
        QVERIFY(html.contains("<th scope=\"row\">11</th>"));
        QVERIFY(html.contains("<th scope=\"row\">12</th>"));
        QVERIFY(html.contains("<a href=\"#label-3\">13</a>"));
    }

    void the_title_is_the_first_header_line()
    {
        TAppearance appearance;
        QCOMPARE(WebPage::Of(TData(), appearance, TFindings(), QStringLiteral("file")).title,
                 QStringLiteral("file"));
        appearance.header_1 = QStringLiteral("one");
        appearance.header_2 = QStringLiteral("two");
        const TWebPage page = WebPage::Of(TData(), appearance, TFindings(), QStringLiteral("file"));
        QCOMPARE(page.title, QStringLiteral("one"));
        QCOMPARE(page.subtitle, QStringLiteral("two"));
    }

    void progress_is_reported_for_each_page()
    {
        QStringList reports;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        const TWebPage page = Page({{"a", TPageImage(), {}}, {"b", TPageImage(), {}}});
        QVERIFY(WebPage::Write(
            page,
            [&reports](int number, int total) {
                reports += QStringLiteral("%1/%2").arg(number).arg(total);
            },
            &buffer));
        QCOMPARE(reports, QStringList({"1/2", "2/2"}));
    }

    void a_device_that_accepts_only_a_part_is_a_failure()
    {
        TSmallDevice device;
        device.open(QIODevice::WriteOnly);
        QVERIFY(!WebPage::Write(Page({{"a", Support::Picture(400, 400), {}}}), nullptr, &device));
    }

    void a_file_that_cannot_be_written_completely_is_unchanged()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath("a.html");
        Support::Write_File(path, "old");
        const Support::TChildResult result = Support::Run_In_Child([&path] {
            Support::Limit_File_Size(3000);
            return WebPage::Save(Page({{"a", Support::Picture(400, 400), {}}}), nullptr, path) ? 1
                                                                                               : 0;
        });
        QVERIFY(result.exited);
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(Support::Read_File(path), QByteArray("old"));
        QCOMPARE(Support::Entries(folder.path()), QStringList("a.html"));
        QVERIFY(WebPage::Save(Page({{"a", Support::Picture(40, 40), {}}}), nullptr, path));
        QVERIFY(Support::Read_File(path).endsWith("</html>\n"));
    }
};

QTEST_MAIN(TestWebPage)
#include "test_webpage.moc"
