#include "src/widgets/documentname.h"

#include <QFileInfo>

TDocumentName::TDocumentName(QWidget* parent)
    : TElidedLabel(Qt::ElideMiddle, parent)
{
    Show_Document(QString(), false);
}

void TDocumentName::Show_Document(const QString& path, bool is_changed)
{
    // Filling the page view calls this for each label.
    if (!text().isEmpty() && path == d_path && is_changed == d_is_changed)
        return;
    d_path = path;
    d_is_changed = is_changed;
    const QString name = path.isEmpty() ? tr("New document") : QFileInfo(path).fileName();
    const QString state = is_changed ? tr("Unsaved changes") : tr("No unsaved changes");
    setText(is_changed ? name + QStringLiteral(" *") : name);
    setAccessibleName(is_changed ? tr("%1, unsaved changes").arg(name) : name);
    // The first line has no file name, which may look like rich text.
    setToolTip(path.isEmpty() ? state : state + QLatin1Char('\n') + path);
}
