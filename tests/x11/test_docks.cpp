#include "support/window.h"

#include "src/labelwidget.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// What the settings remember of windows that a window manager has a say in.
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

private slots:
    void init()
    {
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        d_home = std::make_unique<QTemporaryDir>();
        QVERIFY(d_home->isValid());
        qputenv("HOME", QFile::encodeName(d_home->path()));
    }

    void a_first_start_has_three_docks_in_a_window_of_the_usual_size()
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

    void floating_docks_come_back_where_they_were()
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

    void hidden_docks_come_back_hidden()
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

    void the_window_comes_back_where_it_was()
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
