#include "src/widgets/accessibility.h"

#include <QWidget>

void Accessibility::Describe(QWidget* widget, const QString& name, const QString& description)
{
    widget->setAccessibleName(name);
    widget->setAccessibleDescription(description);
}

QString Accessibility::Name_Of_Caption(const QString& caption)
{
    return caption.endsWith(QLatin1Char(':')) ? caption.chopped(1) : caption;
}
