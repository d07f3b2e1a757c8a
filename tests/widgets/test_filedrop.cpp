// Dropping files on a window, on bare widgets.

#include "src/widgets/filedrop.h"

#include "support/support.h"

#include <QDragEnterEvent>
#include <QGraphicsView>
#include <QLineEdit>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

class TestFileDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void accepted_files_can_be_dropped_everywhere();
    void all_files_are_passed_on_if_one_is_accepted();
    void drags_without_accepted_files_are_left_to_the_widget();
    void a_graphics_view_refuses_drags_without_accepted_files();
    void drags_that_can_only_move_files_are_refused();

private:
    QString File(const QString& name) const;
    bool Drop(QWidget* on, const QStringList& paths, Qt::DropActions actions = Qt::CopyAction);

    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<QWidget> d_window;
    QGraphicsView* d_view = nullptr;
    QLineEdit* d_editor = nullptr;
    QStringList d_dropped;
};

/// A window with a graphics view and an editor.
void TestFileDrop::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = std::make_unique<QWidget>();
    d_view = new QGraphicsView(new QGraphicsScene(d_window.get()), d_window.get());
    d_editor = new QLineEdit(d_window.get());
    d_dropped.clear();
    const auto is_image = [](const QString& path) {
        return path.endsWith(".png") || path.endsWith(".JPG");
    };
    new TFileDrop(d_window.get(), is_image,
                  [this](const QStringList& paths) { d_dropped += paths; });
}

void TestFileDrop::cleanup()
{
    d_window.reset();
    d_folder.reset();
}

/// Makes a file in the folder; returns its path.
QString TestFileDrop::File(const QString& name) const
{
    const QString path = d_folder->filePath(name);
    Support::Write_File(path, "content");
    return path;
}

/// Drags files into a widget and drops them if it accepts them; returns whether it did.
bool TestFileDrop::Drop(QWidget* on, const QStringList& paths, Qt::DropActions actions)
{
    QMimeData dragged;
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls += QUrl::fromLocalFile(path);
    dragged.setUrls(urls);
    const QPoint place = on->rect().center();
    QDragEnterEvent enter(place, actions, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(on, &enter);
    QDragMoveEvent move(place, actions, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(on, &move);
    if (!enter.isAccepted() || !move.isAccepted()) {
        // Qt keeps a pointer to the target until the drag ends.
        QDragLeaveEvent leave;
        QApplication::sendEvent(on, &leave);
        return false;
    }
    QDropEvent drop(place, actions, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(on, &drop);
    return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
}

void TestFileDrop::accepted_files_can_be_dropped_everywhere()
{
    const QString image = File("page.png");
    for (QWidget* const widget :
         {d_window.get(), d_view->viewport(), static_cast<QWidget*>(d_editor)}) {
        d_dropped.clear();
        QVERIFY(Drop(widget, {image}));
        QCOMPARE(d_dropped, QStringList(image));
    }
}

void TestFileDrop::all_files_are_passed_on_if_one_is_accepted()
{
    const QStringList images = {File("b.png"), File("a.JPG")};
    QVERIFY(QDir(d_folder->path()).mkdir("folder.png"));
    QVERIFY(
        Drop(d_window.get(), {images.first(), File("notes.txt"), d_folder->filePath("folder.png"),
                              images.last(), d_folder->filePath("missing.png")}));
    QCOMPARE(d_dropped,
             QStringList({images.first(), d_folder->filePath("notes.txt"), images.last()}));
}

void TestFileDrop::drags_without_accepted_files_are_left_to_the_widget()
{
    QVERIFY(!Drop(d_window.get(), {File("notes.txt")}));
    QMimeData dragged;
    dragged.setText("text");
    QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(d_editor, &enter);
    QDropEvent drop(QPointF(2, 2), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(d_editor, &drop);
    QCOMPARE(d_editor->text(), QString("text"));
    QVERIFY(d_dropped.isEmpty());
}

void TestFileDrop::a_graphics_view_refuses_drags_without_accepted_files()
{
    QVERIFY(!Drop(d_view->viewport(), {File("notes.txt")}));
    QVERIFY(d_dropped.isEmpty());
}

void TestFileDrop::drags_that_can_only_move_files_are_refused()
{
    QVERIFY(!Drop(d_window.get(), {File("page.png")}, Qt::MoveAction));
    QVERIFY(Drop(d_window.get(), {File("page.png")}, Qt::MoveAction | Qt::CopyAction));
    QCOMPARE(d_dropped.size(), 1);
}

QTEST_MAIN(TestFileDrop)
#include "test_filedrop.moc"
