#include "support/window.h"

#include "src/displaywidget.h"
#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Restoring the window and its docks under a window manager.
class TestDocks : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> d_home;

    static std::unique_ptr<TOpenWindow> Shown_Window()
    {
        auto window = std::make_unique<TOpenWindow>();
        window->show();
        return QTest::qWaitForWindowExposed(window.get()) ? std::move(window) : nullptr;
    }

    /// Whether the window manager stacks a window above another one.
    static bool Is_Above(const QWidget& upper, const QWidget& lower)
    {
        QProcess xprop;
        xprop.start(QStringLiteral("xprop"),
                    {QStringLiteral("-root"), QStringLiteral("_NET_CLIENT_LIST_STACKING")});
        xprop.waitForFinished();
        // Window ids, the lowest window first.
        const QString stack = QString::fromLatin1(xprop.readAllStandardOutput());
        const auto stack_position = [&stack](const QWidget& widget) {
            return stack.indexOf(
                QRegularExpression(QStringLiteral("0x%1\\b").arg(widget.winId(), 0, 16)));
        };
        return stack_position(lower) >= 0 && stack_position(upper) > stack_position(lower);
    }

private slots:
    void init()
    {
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        d_home = std::make_unique<QTemporaryDir>();
        QVERIFY(d_home->isValid());
        qputenv("HOME", QFile::encodeName(d_home->path()));
    }

    void a_first_start_has_three_docks_in_a_window_of_the_default_size()
    {
        const auto window = Shown_Window();
        QVERIFY(window);
        QCOMPARE(window->size(), QSize(800, 600));
        QTRY_COMPARE(window->pos(), QPoint(30, 30));
        for (const QDockWidget* dock :
             {window->d_label_dock, window->d_settings_dock, window->d_page_dock}) {
            QVERIFY(dock->isVisible());
            QVERIFY(!dock->isFloating());
        }
    }

    void captions_and_entries_are_whole_at_the_first_start()
    {
        const auto window = Shown_Window();
        QVERIFY(window);
        QCOMPARE(window->size(), QSize(800, 600));
        QVERIFY(!window->d_display_widget->horizontalScrollBar()->isVisible());
        for (const QWidget* panel : {static_cast<QWidget*>(window->d_label_widget),
                                     static_cast<QWidget*>(window->d_settings_widget)}) {
            for (const QLabel* caption : panel->findChildren<QLabel*>())
                QVERIFY2(caption->heightForWidth(caption->width()) <
                             2 * caption->fontMetrics().lineSpacing(),
                         qPrintable(caption->text()));
            for (const QComboBox* box : panel->findChildren<QComboBox*>())
                QVERIFY2(box->width() >= box->sizeHint().width(), qPrintable(box->currentText()));
        }
    }

    void floating_docks_are_restored_to_their_positions()
    {
        {
            const auto window = Shown_Window();
            QVERIFY(window);
            for (QDockWidget* dock : {window->d_label_dock, window->d_page_dock}) {
                dock->setFloating(true);
                QVERIFY(QTest::qWaitForWindowExposed(dock));
            }
            window->d_label_dock->move(500, 150);
            window->d_page_dock->move(140, 420);
            QTRY_COMPARE(window->d_label_dock->pos(), QPoint(500, 150));
            QTRY_COMPARE(window->d_page_dock->pos(), QPoint(140, 420));
            QVERIFY(window->close());
        }
        const auto window = Shown_Window();
        QVERIFY(window);
        QVERIFY(window->d_label_dock->isFloating());
        QVERIFY(window->d_page_dock->isFloating());
        QVERIFY(!window->d_settings_dock->isFloating());
        for (const QDockWidget* dock :
             {window->d_label_dock, window->d_settings_dock, window->d_page_dock})
            QTRY_VERIFY(dock->isVisible());
        QTRY_COMPARE(window->d_label_dock->pos(), QPoint(500, 150));
        QTRY_COMPARE(window->d_page_dock->pos(), QPoint(140, 420));
    }

    void floating_docks_are_above_the_window_after_a_restart()
    {
        {
            const auto window = Shown_Window();
            QVERIFY(window);
            window->d_label_dock->setFloating(true);
            QVERIFY(QTest::qWaitForWindowExposed(window->d_label_dock));
            window->d_label_dock->move(300, 250);
            QTRY_COMPARE(window->d_label_dock->pos(), QPoint(300, 250));
            QVERIFY(window->close());
        }
        const auto window = Shown_Window();
        QVERIFY(window);
        QTRY_COMPARE(window->d_label_dock->pos(), QPoint(300, 250));
        QTRY_VERIFY(Is_Above(*window->d_label_dock, *window));
    }

    void a_floating_dock_is_completely_on_a_screen_after_a_restart_data()
    {
        QTest::addColumn<QPoint>("stored");
        QTest::newRow("partly to the right") << QPoint(1200, 100);
        QTest::newRow("partly below") << QPoint(100, 870);
        QTest::newRow("partly to the left and above") << QPoint(-60, -40);
        QTest::newRow("on a screen that has gone") << QPoint(3000, 2000);
    }

    void a_floating_dock_is_completely_on_a_screen_after_a_restart()
    {
        QFETCH(QPoint, stored);
        {
            const TOpenWindow window;
            window.d_settings->setValue(QStringLiteral("Label_Floating"), true);
            window.d_settings->setValue(QStringLiteral("Label_Position"), stored);
        }
        const auto window = Shown_Window();
        QVERIFY(window);
        const QDockWidget* const dock = window->d_label_dock;
        QVERIFY(QTest::qWaitForWindowExposed(window->d_label_dock));
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QTRY_VERIFY2(screen.contains(dock->frameGeometry()),
                     qPrintable(QStringLiteral("at %1, %2").arg(dock->x()).arg(dock->y())));
        QTRY_VERIFY(Is_Above(*dock, *window));
    }

    void hidden_docks_stay_hidden_after_a_restart()
    {
        {
            const auto window = Shown_Window();
            QVERIFY(window);
            window->d_settings_dock->close();
            window->d_page_dock->setFloating(true);
            window->d_page_dock->close();
            QVERIFY(window->close());
        }
        const auto window = Shown_Window();
        QVERIFY(window);
        QVERIFY(window->d_label_dock->isVisible());
        QVERIFY(!window->d_settings_dock->isVisible());
        QVERIFY(!window->d_page_dock->isVisible());
        QVERIFY(window->d_page_dock->isFloating());
    }

    void the_window_is_restored_to_its_position()
    {
        {
            const auto window = Shown_Window();
            QVERIFY(window);
            window->move(200, 100);
            window->resize(900, 700);
            QTRY_COMPARE(window->pos(), QPoint(200, 100));
            QTRY_COMPARE(window->size(), QSize(900, 700));
            QVERIFY(window->close());
        }
        const auto window = Shown_Window();
        QVERIFY(window);
        QTRY_COMPARE(window->pos(), QPoint(200, 100));
        QTRY_COMPARE(window->size(), QSize(900, 700));
    }
};

QTEST_MAIN(TestDocks)
#include "test_docks.moc"
