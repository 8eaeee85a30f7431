// What the window keeps from one run to the next.

#include "editorfixture.h"

#include "minimap.h"
#include "sceneview.h"

#include <QAction>
#include <QDockWidget>
#include <QSettings>
#include <QSplitter>

using namespace Host;

namespace
{

class LayoutOfTheWindow : public ::testing::Test
{
protected:
    LayoutOfTheWindow() { QSettings().remove("editor/window"); }
    ~LayoutOfTheWindow() override { QSettings().remove("editor/window"); }

    struct Run {
        Run()
            : window(nodeTypes())
        {
            window.setAttribute(Qt::WA_DontShowOnScreen);
            window.resize(1200, 900);
            window.restoreLayout();
            window.show();
        }
        bool showsOverview() const { return window.findChild<MiniMap*>()->isVisible(); }
        bool showsHistogram() const { return window.findChild<QDockWidget*>("histogram")->isVisible(); }
        QSplitter& panes() const { return *qobject_cast<QSplitter*>(window.centralWidget()); }
        void press(const char* action) const { window.findChild<QAction*>(action)->trigger(); }
        EditorWindow window;
    };
};

} // namespace

TEST_F(LayoutOfTheWindow, IsAtFirstThatOfTheProgram)
{
    const Run run;
    EXPECT_EQ(run.window.size(), QSize(1200, 900));
    EXPECT_TRUE(run.showsOverview());
    EXPECT_TRUE(run.showsHistogram());
}

TEST_F(LayoutOfTheWindow, IsThatOfTheLastWindowThatWasClosed)
{
    QList<int> sizes;
    {
        Run run;
        run.window.resize(700, 600);
        run.press("view.overview");
        run.window.findChild<QDockWidget*>("histogram")->hide();
        run.panes().setSizes({400, 100});
        sizes = run.panes().sizes();
        ASSERT_GT(sizes[0], 2 * sizes[1]);
        EXPECT_TRUE(run.window.close());
    }
    {
        const Run run;
        EXPECT_EQ(run.window.size(), QSize(700, 600));
        EXPECT_FALSE(run.showsOverview());
        EXPECT_FALSE(run.showsHistogram());
        EXPECT_EQ(run.panes().sizes(), sizes);
        run.press("view.overview"); // but is not closed
    }
    const Run run;
    EXPECT_FALSE(run.showsOverview());
}

TEST_F(LayoutOfTheWindow, ThatMakesNoSenseIsPassedOver)
{
    QSettings settings;
    for (const char* const part : {"geometry", "state", "panes"})
        settings.setValue(QString("editor/window/") + part, QByteArray("no layout at all"));
    settings.setValue("editor/window/overview", "perhaps");
    const Run run;
    EXPECT_EQ(run.window.size(), QSize(1200, 900));
    EXPECT_TRUE(run.showsHistogram());
}
