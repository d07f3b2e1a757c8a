// Pictures as tool tips of rows.

#include "src/widgets/thumbnailtip.h"

#include "support/support.h"

#include "src/widgets/rowlist.h"

#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

class TestThumbnailTip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void a_picture_is_made_only_for_the_row_under_the_pointer();
    void a_large_picture_is_shown_smaller_data();
    void a_large_picture_is_shown_smaller();
    void the_name_is_shown_literally();
    void a_row_without_a_picture_has_no_tool_tip();
    void there_is_no_tool_tip_below_the_rows();

private:
    void Ask(int row) const;
    static QImage Shown();

    std::unique_ptr<TRowList> d_list;
    QImage d_picture;
    QList<int> d_asked; ///< ids
};

void TestThumbnailTip::init()
{
    d_list = std::make_unique<TRowList>(nullptr);
    for (const int id : {7, 8}) {
        auto* const row = new QListWidgetItem(QStringLiteral("A <b> %1").arg(id));
        row->setData(TRowList::Id_Role, id);
        d_list->addItem(row);
    }
    d_asked.clear();
    d_picture = Support::Picture(60, 40);
    new TThumbnailTip(d_list.get(), [this](int id) {
        d_asked += id;
        return d_picture;
    });
    d_list->show();
    QVERIFY(QTest::qWaitForWindowExposed(d_list.get()));
}

void TestThumbnailTip::cleanup()
{
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    d_list.reset();
}

/// Rests the pointer on a row; one past the last is below the rows.
void TestThumbnailTip::Ask(int row) const
{
    const QRect first = d_list->visualItemRect(d_list->item(0));
    const QPoint place = first.center() + QPoint(0, row * first.height());
    QHelpEvent event(QEvent::ToolTip, place, d_list->viewport()->mapToGlobal(place));
    QApplication::sendEvent(d_list->viewport(), &event);
}

/// The picture in the tool tip.
QImage TestThumbnailTip::Shown()
{
    const QString mark = QStringLiteral("base64,");
    const QString tip = QToolTip::text();
    const int start = tip.indexOf(mark) + mark.size();
    return QImage::fromData(QByteArray::fromBase64(
        tip.mid(start, tip.indexOf(QLatin1Char('"'), start) - start).toLatin1()));
}

void TestThumbnailTip::a_picture_is_made_only_for_the_row_under_the_pointer()
{
    QCOMPARE(d_asked, QList<int>());
    Ask(1);
    QCOMPARE(d_asked, QList<int>{8});
    QCOMPARE(Support::Difference(Shown(), d_picture), QString());
}

void TestThumbnailTip::a_large_picture_is_shown_smaller_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("wide") << QSize(1000, 500) << QSize(240, 120);
    QTest::newRow("tall") << QSize(240, 480) << QSize(120, 240);
    QTest::newRow("thin") << QSize(3, 2000) << QSize(1, 240);
    QTest::newRow("fits") << QSize(240, 240) << QSize(240, 240);
}

void TestThumbnailTip::a_large_picture_is_shown_smaller()
{
    QFETCH(QSize, size);
    QFETCH(QSize, shown);
    d_picture = Support::Picture(size.width(), size.height());
    Ask(0);
    QCOMPARE(Shown().size(), shown);
}

void TestThumbnailTip::the_name_is_shown_literally()
{
    Ask(0);
    QVERIFY2(QToolTip::text().contains(QStringLiteral("A &lt;b&gt; 7")),
             qPrintable(QToolTip::text().left(100)));
}

void TestThumbnailTip::a_row_without_a_picture_has_no_tool_tip()
{
    d_picture = QImage();
    Ask(0);
    QCOMPARE(d_asked, QList<int>{7});
    QVERIFY(!QToolTip::isVisible());
}

void TestThumbnailTip::there_is_no_tool_tip_below_the_rows()
{
    Ask(2);
    QCOMPARE(d_asked, QList<int>());
    QVERIFY(!QToolTip::isVisible());
}

QTEST_MAIN(TestThumbnailTip)
#include "test_thumbnailtip.moc"
