// Work in the background, and what happens to it meanwhile.

#include "editorwindow.h"
#include "exporter.h"
#include "gate.h"
#include "imagepane.h"
#include "pictures.h"
#include "preferences.h"
#include "proprofile.h"
#include "scene.h"
#include "script.h"
#include "testnodes.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <thread>

using namespace Host;

namespace
{

constexpr int kPatience = 60000; // milliseconds

// What a node adds whose result hangs on the display.
unsigned int displayAmount()
{
    return Ondrel::ColorManager::displayProfileAsHash()[0] * 16u;
}

// A window in which a source is shown, beside a hook behind it that nobody looks at.
class ExportOverReload : public testing::Test
{
protected:
    ExportOverReload()
        : window(nodes.types)
        , script(window, QDir(folder.path()))
        , source(window.document().addNode("test/source", {0, 0}, "Source"))
        , hook(window.document().addNode("test/hook", {400, 0}, "Hook"))
    {
        window.setAttribute(Qt::WA_DontShowOnScreen);
        window.show();
        EXPECT_EQ(window.document().addConnection({source, "image", hook, "image"}), QString());
        play("show Source\nwait");
    }
    ~ExportOverReload() override
    {
        window.document().undoStack().setClean();
        QSettings().remove("settings");
        Ondrel::ColorManager::reload();
    }

    void play(const QString& lines) { EXPECT_TRUE(script.run(lines)) << qPrintable(script.error()); }

    TestNodes nodes;
    QTemporaryDir folder;
    EditorWindow window;
    Script script;
    NodeId source, hook;
    Gate inHook, release;
};

} // namespace

// The node has looked at the display when its settings change, and is not ready yet when they hold.
TEST_F(ExportOverReload, LeavesNothingOfTheOldDisplay)
{
    std::atomic<int> entries{0};
    nodes.hook = [&](const Request&) {
        const unsigned int amount = displayAmount();
        if (++entries == 1) {
            inHook.open();
            release.pass();
        }
        return amount;
    };
    const QString file = folder.filePath("exported.png");
    const unsigned int before = displayAmount();
    ExportOrder order{window.document().graph(), hook, file, FileFormat::Png, {{"pngdepth", "16 bits"}}};
    QSignalSpy exported(&window.exporter(), &Exporter::finished);
    window.exporter().add(order);
    inHook.pass();
    PreferenceValues values;
    values.displayProfile = proPhotoProfile();
    window.preferences().apply(values);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window.preferences().isBusy(); }, kPatience));
    ASSERT_NE(displayAmount(), before);
    EXPECT_EQ(entries, 1);
    release.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return exported.count() == 1; }, kPatience));
    EXPECT_EQ(exported[0][1].toString(), QString());
    Ondrel::Image written;
    ASSERT_TRUE(ResourceEngine::ImportPNG(file, written));
    const unsigned int expected = 50 * 256 + displayAmount();
    EXPECT_EQ(written.data[0], expected);
    EXPECT_EQ(entries, 2);
    play("show Hook\nwait");
    EXPECT_EQ(window.imagePane().picture().image->data[0], expected);
    EXPECT_EQ(entries, 2) << "what the export left is of the new display";
}

// Who asks for the number of a generation while the display changes, waits: else results of the old display and of the
// new one would be of the same generation. The profiles are locked, so that the change cannot come to its end.
TEST_F(ExportOverReload, DisplayAndGenerationChangeAtOnce)
{
    const ResultCache& cache = window.pictures().evaluator().cache();
    const quint64 before = cache.generation();
    Gate locked;
    std::future<quint64> asked;
    auto another = std::async(std::launch::async, [&] {
        Ondrel::ColorManager::beginUsingColorProfileMap();
        locked.open();
        bool waits = false;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!waits && std::chrono::steady_clock::now() < end) {
            asked = std::async(std::launch::async, [&cache] { return cache.generation(); });
            waits = asked.wait_for(std::chrono::milliseconds(200)) == std::future_status::timeout;
        }
        Ondrel::ColorManager::endUsingColorProfileMap();
        return waits;
    });
    locked.pass();
    ASSERT_TRUE(QMetaObject::invokeMethod(&window.preferences(), "reloadWhenIdle"));
    EXPECT_TRUE(another.get());
    EXPECT_GT(asked.get(), before);
}
