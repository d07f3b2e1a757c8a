#include "src/widgets/documentname.h"

#include <QFileInfo>

TDocumentName::TDocumentName(QWidget* parent)
    : TElidedLabel(Qt::ElideMiddle, parent)
{
    // Messages begin at the same place.
    constexpr int indent = 4; // pixels
    setContentsMargins(indent, 0, 0, 0);
    // The status bar hides it behind messages. They must not move the zoom control.
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
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
    // Qt decides by the first line whether a text is rich text, so that line has no file name.
    setToolTip(path.isEmpty() ? state : state + QLatin1Char('\n') + path);
}
