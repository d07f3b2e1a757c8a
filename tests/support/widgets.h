#pragma once

#include <QApplication>
#include <QLabel>
#include <QList>
#include <QListWidget>
#include <QMetaMethod>
#include <QStyleFactory>
#include <QTest>
#include <QWidget>

/// Finds widgets as a user does: by kind, tool tip, caption or text.
namespace Support {

/// Selects the style that the tests expect.
inline void Set_Style()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
}

/// The only widget of its kind inside of another one; null when there is none or more than one.
template <typename TWidget>
TWidget* Only(const QWidget& inside)
{
    const QList<TWidget*> found = inside.findChildren<TWidget*>();
    return found.size() == 1 ? found.first() : nullptr;
}

/// The only widget of its kind with this tool tip; null when there is none or more than one.
template <typename TWidget>
TWidget* By_Tool_Tip(const QWidget& inside, const QString& tool_tip)
{
    TWidget* match = nullptr;
    for (TWidget* const widget : inside.findChildren<TWidget*>()) {
        if (widget->toolTip() != tool_tip)
            continue;
        if (match != nullptr)
            return nullptr;
        match = widget;
    }
    return match;
}

/// The caption with this text; null when there is none.
inline QLabel* Caption(const QWidget& inside, const QString& text)
{
    for (QLabel* const label : inside.findChildren<QLabel*>()) {
        if (label->text() == text)
            return label;
    }
    return nullptr;
}

/// The widget that a caption belongs to; null when there is none of this kind.
template <typename TWidget>
TWidget* By_Caption(const QWidget& inside, const QString& text)
{
    const QLabel* const label = Caption(inside, text);
    return label != nullptr ? qobject_cast<TWidget*>(label->buddy()) : nullptr;
}

/// Clicks on a row of a list.
inline void Click_Row(QListWidget* list, int index, Qt::KeyboardModifiers modifiers = {})
{
    list->scrollToItem(list->item(index));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers,
                      list->visualItemRect(list->item(index)).center());
}

/// Replaces the text of an editor with key presses.
template <typename TEditor>
void Type_Over(TEditor* editor, const QString& text)
{
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClicks(editor, text);
}

/// Compares the parent and the window flags of a new panel with the given ones.
template <typename TPanel>
void Compare_Parent_And_Flags()
{
    QWidget window;
    const QWidget* const parent = &window;
    const TPanel child(parent, Qt::WindowFlags());
    QCOMPARE(child.parentWidget(), &window);
    QVERIFY(!child.isWindow());
    const TPanel tool(parent, Qt::Tool);
    QCOMPARE(tool.windowType(), Qt::Tool);
}

/// Signatures of the methods of one kind that a class itself declares, in their order.
inline QStringList Methods(const QMetaObject& type, QMetaMethod::MethodType kind)
{
    QStringList signatures;
    for (int index = type.methodOffset(); index < type.methodCount(); ++index) {
        if (type.method(index).methodType() == kind)
            signatures.append(QString::fromLatin1(type.method(index).methodSignature()));
    }
    return signatures;
}

} // namespace Support
