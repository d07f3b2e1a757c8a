// The name of the document in the status bar, on its own.

#include "src/widgets/documentname.h"

#include <QTest>
#include <QTextDocument>

class TestDocumentName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void it_names_the_file_and_marks_changes_data();
    void it_names_the_file_and_marks_changes();
    void a_file_name_is_not_rich_text();
    void a_long_name_keeps_its_end();
};

void TestDocumentName::it_names_the_file_and_marks_changes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("is_changed");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("spoken");
    QTest::addColumn<QString>("tool_tip");
    QTest::newRow("new") << "" << false << "New document"
                         << "New document"
                         << "No unsaved changes";
    QTest::newRow("new and changed") << "" << true << "New document *"
                                     << "New document, unsaved changes"
                                     << "Unsaved changes";
    QTest::newRow("saved") << "/a/site plan.quillet" << false << "site plan.quillet"
                           << "site plan.quillet"
                           << "No unsaved changes\n/a/site plan.quillet";
    QTest::newRow("changed") << "/a/%1.quillet" << true << "%1.quillet *"
                             << "%1.quillet, unsaved changes"
                             << "Unsaved changes\n/a/%1.quillet";
}

void TestDocumentName::it_names_the_file_and_marks_changes()
{
    QFETCH(QString, path);
    QFETCH(bool, is_changed);
    TDocumentName name(nullptr);
    QCOMPARE(name.text(), QString("New document"));
    for (const bool before : {!is_changed, is_changed}) {
        name.Show_Document("/other.quillet", before);
        name.Show_Document(path, is_changed);
        QTEST(name.text(), "text");
        QTEST(name.accessibleName(), "spoken");
        QTEST(name.toolTip(), "tool_tip");
    }
}

void TestDocumentName::a_file_name_is_not_rich_text()
{
    TDocumentName name(nullptr);
    name.Show_Document("/a/<b>bold.quillet", false);
    QCOMPARE(name.textFormat(), Qt::PlainText);
    QVERIFY(!Qt::mightBeRichText(name.toolTip()));
}

void TestDocumentName::a_long_name_keeps_its_end()
{
    // Two names that differ only at one end, in a label that is too narrow for them.
    const auto picture = [](const QString& path) {
        TDocumentName name(nullptr);
        name.Show_Document(path, true);
        name.resize(120, 20);
        return name.grab().toImage();
    };
    const QString middle(100, 'm');
    QVERIFY(picture("/a" + middle + "x") != picture("/a" + middle + "y"));
    QVERIFY(picture("/a" + middle) != picture("/b" + middle));
    QCOMPARE(picture("/a" + middle + "m"), picture("/a" + middle));
}

QTEST_MAIN(TestDocumentName)
#include "test_documentname.moc"
