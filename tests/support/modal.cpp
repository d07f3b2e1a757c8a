#include "support/modal.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace Support {

namespace {

/// Finds a button by its text, whether or not the text has a mnemonic.
QPushButton* Button(QWidget* dialog, const QString& text)
{
    const QList<QPushButton*> buttons = dialog->findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        if (button->text().remove(QLatin1Char('&')) == text)
            return button;
    }
    return nullptr;
}

} // namespace

QString Run_Answering(const std::function<void()>& command, std::vector<TAnswer> answers)
{
    constexpr int poll_milliseconds = 5;
    constexpr int maximum_polls = 600;
    int idle_polls = 0;
    size_t next = 0;
    QString fault;
    QWidget* answered = nullptr;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible()) {
            answered = nullptr;
            return;
        }
        // The dialog is still open. If it is shown again later, a poll finds it hidden in between.
        if (dialog == answered) {
            // An answer whose check failed leaves its dialog open.
            if (++idle_polls == maximum_polls) {
                fault = QStringLiteral("a dialog did not close");
                dialog->close();
            }
            return;
        }
        idle_polls = 0;
        answered = dialog;
        if (next < answers.size()) {
            const TAnswer answer = answers[next++];
            answer(dialog);
            answered = QApplication::activeModalWidget() == dialog && dialog->isVisible() ? dialog
                                                                                          : nullptr;
        } else {
            fault = QStringLiteral("unexpected dialog: ") + dialog->windowTitle() +
                    QLatin1String(dialog->metaObject()->className());
            dialog->close();
        }
    });
    timer.start(poll_milliseconds);
    command();
    timer.stop();
    if (fault.isEmpty() && next != answers.size())
        fault = QStringLiteral("%1 dialogs instead of %2").arg(next).arg(answers.size());
    return fault;
}

TAnswer Press(QMessageBox::StandardButton button)
{
    return Look_And_Press([](QMessageBox*) {}, button);
}

TAnswer Look_And_Press(const std::function<void(QMessageBox*)>& look,
                       QMessageBox::StandardButton button)
{
    return [=](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        QVERIFY(box);
        look(box);
        QVERIFY(box->button(button));
        QTest::mouseClick(box->button(button), Qt::LeftButton);
    };
}

TAnswer Choose(const QStringList& paths)
{
    return [=](QWidget* widget) {
        auto* dialog = qobject_cast<QFileDialog*>(widget);
        QVERIFY(dialog);
        QStringList names = paths;
        if (names.size() > 1) {
            for (QString& name : names)
                name = QLatin1Char('"') + QFileInfo(name).fileName() + QLatin1Char('"');
            dialog->setDirectory(QFileInfo(paths.first()).path());
        }
        auto* editor = dialog->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->setText(names.join(QLatin1Char(' ')));
        QTest::keyClick(editor, Qt::Key_Return);
    };
}

TAnswer Cancel()
{
    return [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); };
}

TAnswer Click(const QString& button_text, const std::function<void(QWidget*)>& prepare)
{
    return [=](QWidget* dialog) {
        if (prepare)
            prepare(dialog);
        QPushButton* button = Button(dialog, button_text);
        QVERIFY2(button, qPrintable(button_text));
        QTest::mouseClick(button, Qt::LeftButton);
    };
}

} // namespace Support
