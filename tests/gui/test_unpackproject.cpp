#include "support/project.h"
#include "support/support.h"
#include "support/window.h"

#include "src/reportheaderdialog.h"
#include "src/settingswidget.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// Checks that a reader written from docs/file-formats.md alone reads everything that the program
/// writes.
class TestUnpackProject : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir d_folder;

    QString Path(const char* name) const { return d_folder.filePath(QString::fromLatin1(name)); }

    /// Runs the reader; returns its standard error.
    QByteArray Unpack(int expected_exit_code) const
    {
        QProcess process;
        process.start(QStringLiteral("python3"),
                      {QStringLiteral(QUILLET_TEST_DATA "/../unpack_project.py"),
                       Path("file.quillet"), Path("unpacked")});
        const bool has_ended = process.waitForFinished();
        const QByteArray errors = process.readAllStandardError();
        return has_ended && process.exitCode() == expected_exit_code ? errors
                                                                     : "exit code: " + errors;
    }

    QJsonObject Json(const char* name) const
    {
        return QJsonDocument::fromJson(
                   Support::Read_File(Path("unpacked/") + QString::fromLatin1(name)))
            .object();
    }

    static QJsonObject Json_Label(int id, int value, const QString& text, int border, double x,
                                  double y)
    {
        return {{QStringLiteral("id"), id},
                {QStringLiteral("value"), value},
                {QStringLiteral("text"), text},
                {QStringLiteral("border_type"), border},
                {QStringLiteral("position"), QJsonArray{x, y}}};
    }

    QStringList Unpacked_Files() const { return QDir(Path("unpacked")).entryList(QDir::Files); }

private slots:
    void init()
    {
        QVERIFY(d_folder.isValid());
        QVERIFY(QDir(Path("unpacked")).removeRecursively());
    }

    void a_saved_document_is_unpacked()
    {
        const QImage first = Support::Picture(31, 17, 1);
        const QImage third = Support::Picture(8, 5, 3);
        const QString text = QString::fromUtf8("Pumpe <&> \" ä€");
        TOpenWindow window;
        Support::Add_Pages(&window, {{QString::fromUtf8("café"),
                                      first,
                                      {Support::Label(1804289383, 7, text, 2, {120.5, 33}),
                                       Support::Label(-3, -12, {}, 8, {-0.126, 1e6})}},
                                     {QStringLiteral("empty"), QImage(), {}},
                                     {QString(), third, {}}});
        window.d_settings_widget->Set_Label_Size(48);
        window.d_settings_widget->Set_Label_Color(QColor(10, 20, 30));
        window.Header_Dialog()->Set_Header2_Text(QString::fromUtf8("zweite Zeile ß"));
        QVERIFY(window.Save_Data(Path("file.quillet")));
        QCOMPARE(Unpack(0), QByteArray());

        QCOMPARE(Unpacked_Files(),
                 (QStringList{"header.json", "page_0001.json", "page_0001.png", "page_0002.json",
                              "page_0003.json", "page_0003.png"}));
        QCOMPARE(Json("header.json"),
                 (QJsonObject{{QStringLiteral("label_size"), 48},
                              {QStringLiteral("label_color"), QStringLiteral("#0a141e")},
                              {QStringLiteral("header_1"), QString()},
                              {QStringLiteral("header_2"), QString::fromUtf8("zweite Zeile ß")},
                              {QStringLiteral("page_count"), 3}}));
        QCOMPARE(Json("page_0001.json"),
                 (QJsonObject{{QStringLiteral("name"), QString::fromUtf8("café")},
                              {QStringLiteral("labels"),
                               QJsonArray{Json_Label(1804289383, 7, text, 2, 120.5, 33),
                                          Json_Label(-3, -12, QString(), 8, -0.13, 1e6)}}}));
        QCOMPARE(Json("page_0002.json"),
                 (QJsonObject{{QStringLiteral("name"), QStringLiteral("empty")},
                              {QStringLiteral("labels"), QJsonArray()}}));
        QCOMPARE(Json("page_0003.json").value(QStringLiteral("name")), QJsonValue(QString()));
        QCOMPARE(Support::Difference(QImage(Path("unpacked/page_0001.png")), first), QString());
        QCOMPARE(Support::Difference(QImage(Path("unpacked/page_0003.png")), third), QString());
    }

    void texts_beyond_latin_1_are_unpacked()
    {
        const QString name = QString::fromUtf8("Ω \xf0\x9f\x98\x80 = <&>\"' ?");
        const QString text = QString::fromUtf8("two\n\nlines  Ω ");
        TOpenWindow window;
        Support::Add_Pages(&window, {{name, QImage(), {Support::Label(1, 2, text, 2, {3, 4})}},
                                     {name + "2", QImage(), {}}});
        window.Header_Dialog()->Set_Header1_Text(name + "3");
        window.Header_Dialog()->Set_Header2_Text(QStringLiteral("plain"));
        QVERIFY(window.Save_Data(Path("file.quillet")));
        QCOMPARE(Unpack(0), QByteArray());
        QCOMPARE(Json("header.json").value(QStringLiteral("header_1")), QJsonValue(name + "3"));
        QCOMPARE(Json("header.json").value(QStringLiteral("header_2")),
                 QJsonValue(QStringLiteral("plain")));
        QCOMPARE(
            Json("page_0001.json"),
            (QJsonObject{{QStringLiteral("name"), name},
                         {QStringLiteral("labels"), QJsonArray{Json_Label(1, 2, text, 2, 3, 4)}}}));
        QCOMPARE(Json("page_0002.json").value(QStringLiteral("name")), QJsonValue(name + "2"));
    }

    void an_attribute_that_does_not_match_is_not_unpacked()
    {
        const QByteArray list = Support::Item_List({}, " Page_Name=\"\xce\xa9\"");
        Support::Write_File(Path("file.quillet"),
                            Support::Header(32, "#f79741", "", "", 1) +
                                Support::Page_Record("renamed", QByteArray(), list));
        QCOMPARE(Unpack(0), QByteArray());
        QCOMPARE(Json("page_0001.json").value(QStringLiteral("name")),
                 QJsonValue(QStringLiteral("renamed")));
    }

    void a_document_without_pages_is_its_header()
    {
        TOpenWindow window;
        QVERIFY(window.Save_Data(Path("file.quillet")));
        QCOMPARE(Unpack(0), QByteArray());
        QCOMPARE(Unpacked_Files(), QStringList{"header.json"});
        QCOMPARE(Json("header.json").value(QStringLiteral("label_color")),
                 QJsonValue(QStringLiteral("#f79741")));
    }

    void a_defect_is_named_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("no project") << QByteArray("no project") << QByteArray("Invalid file.");
        QTest::newRow("cut") << Support::Header(32, "#000000", "", "", 1)
                             << QByteArray("The file ends within an integer.");
        QTest::newRow("position") << Support::Header(32, "#000000", "", "", 1) +
                                         Support::Page_Record(
                                             "p", "",
                                             Support::Item_List(
                                                 Support::Item_Element("1", "2", "", "0", "1,2,3")))
                                  << QByteArray("XML Item position invalid");
    }

    void a_defect_is_named()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QByteArray, reason);
        Support::Write_File(Path("file.quillet"), bytes);
        QCOMPARE(Unpack(1), Path("file.quillet").toLocal8Bit() + ": " + reason + '\n');
    }
};

QTEST_MAIN(TestUnpackProject)
#include "test_unpackproject.moc"
