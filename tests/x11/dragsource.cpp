// A window from which files can be dragged, as from a file manager.
//
// Usage: dragsource FILE...

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

namespace {

constexpr int edge = 90; // pixels

class TSource : public QLabel
{
public:
    explicit TSource(const QStringList& paths)
        : QLabel(QStringLiteral("Drag"))
    {
        for (const QString& path : paths)
            d_urls += QUrl::fromLocalFile(path);
        setFixedSize(edge, edge);
        setWindowTitle(QStringLiteral("Drag source"));
    }

protected:
    void mouseMoveEvent(QMouseEvent* /*event*/) override
    {
        auto* const drag = new QDrag(this); // Qt deletes it
        auto* const files = new QMimeData;
        files->setUrls(d_urls);
        drag->setMimeData(files);
        drag->exec(Qt::CopyAction);
    }

private:
    QList<QUrl> d_urls;
};

} // namespace

int main(int argument_count, char** arguments)
{
    const QApplication application(argument_count, arguments);
    TSource source(QApplication::arguments().mid(1));
    source.show();
    return QApplication::exec();
}
