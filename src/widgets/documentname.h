#pragma once

#include "src/widgets/elidedlabel.h"

#include <QString>

/// The name of the open document in the status bar, with an asterisk if it has unsaved changes.
class TDocumentName : public TElidedLabel
{
    Q_OBJECT

public:
    explicit TDocumentName(QWidget* parent);

    /// @param path  of the document; empty for a new one.
    void Show_Document(const QString& path, bool is_changed);

private:
    QString d_path;
    bool d_is_changed = false;
};
