#include "src/widgets/panelparts.h"

#include "src/widgets/accessibility.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>

namespace PanelParts {

namespace {

const int Margin = 2;            // pixels
const int column_gap = 3;        // pixels
const QSize button_size(22, 22); // pixels

/// The size of a caption that does not wrap.
QSize Line_Size(const QLabel& caption)
{
    QLabel line(caption.text());
    line.setFont(caption.font());
    return line.sizeHint();
}

/// A caption that wraps in a narrow column. Its minimum size includes the wrapped lines, because
/// docks ignore heightForWidth().
class TCaption : public QLabel
{
public:
    TCaption(const QString& text, QWidget* parent)
        : QLabel(text, parent)
    {
        setWordWrap(true);
    }

    // By default, a text that wraps prefers two lines from a width on that depends on the font.
    QSize sizeHint() const override { return Line_Size(*this); }

    QSize minimumSizeHint() const override
    {
        // The captions of a panel share a column, which has at least the width of the longest word.
        int column_width = 0;
        const auto captions =
            parentWidget()->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
        for (const QLabel* const caption : captions)
            column_width = std::max(column_width, caption->QLabel::minimumSizeHint().width());
        return {column_width, heightForWidth(column_width)};
    }
};

} // namespace

QToolButton* New_Button(const QString& sign, const QString& tool_tip, const QString& description,
                        QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setFixedSize(button_size);
    button->setText(sign);
    button->setToolTip(tool_tip);
    Accessibility::Describe(button, tool_tip, description);
    return button;
}

void Add_Row(QGridLayout* grid, int row, const QString& caption, QWidget* editor,
             const QString& description)
{
    auto* const label = new TCaption(caption, editor->parentWidget());
    label->setBuddy(editor);
    Accessibility::Describe(editor, Accessibility::Name_Of_Caption(caption), description);
    // By default, a line editor is so wide that a layout takes space from the captions.
    if (qobject_cast<QLineEdit*>(editor))
        editor->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    grid->addWidget(label, row, 0);
    grid->addWidget(editor, row, 1);
    // Captions wrap only when the editors have their minimum width.
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(column_gap);
}

int Caption_Room(const QWidget& panel)
{
    int wrapped = 0;
    int unwrapped = 0;
    const auto captions = panel.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QLabel* const caption : captions) {
        wrapped = std::max(wrapped, caption->minimumSizeHint().width());
        unwrapped = std::max(unwrapped, Line_Size(*caption).width());
    }
    return unwrapped - wrapped;
}

void Set_Margins(QLayout* layout)
{
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
}

} // namespace PanelParts
