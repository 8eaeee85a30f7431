// What the user changes of the editor itself, by the user's events.

#include "editorfixture.h"
#include "imagepane.h"
#include "keystrokeedit.h"
#include "pictures.h"
#include "preferences.h"
#include "preferencesdialog.h"
#include "proprofile.h"
#include "scene.h"
#include "shortcuts.h"
#include "shortcutsdialog.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/opencl.h>
#include <ondrel/resources/resourceengine.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <QThreadPool>

#include <memory>
#include <set>

using namespace Host;

namespace
{

// The settings are one and the same for all tests of the program.
class EmptySettings
{
public:
    EmptySettings() { clear(); }
    ~EmptySettings()
    {
        clear();
        Ondrel::ColorManager::reload();
        PixelOpenCL::instance()->disable();
    }
    EmptySettings(const EmptySettings&) = delete;
    EmptySettings& operator=(const EmptySettings&) = delete;

private:
    static void clear()
    {
        QSettings settings;
        settings.remove("editor");
        settings.remove("settings");
    }
};

class ShortcutsOfTheEditor : public ::testing::Test
{
protected:
    void open()
    {
        window = std::make_unique<EditorWindow>(nodeTypes());
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
    }

    ShortcutsDialog& dialog()
    {
        if (!window->findChild<ShortcutsDialog*>())
            action("edit.shortcuts")->trigger();
        return *window->findChild<ShortcutsDialog*>();
    }

    QAction* action(const QString& name) { return window->findChild<QAction*>(name); }
    QString keys(const QString& name)
    {
        return QKeySequence::listToString(action(name)->shortcuts(), QKeySequence::PortableText);
    }
    QTableWidget& table() { return *dialog().findChild<QTableWidget*>(); }
    QPushButton& button(const char* name) { return *dialog().findChild<QPushButton*>(name); }
    QString conflict() { return dialog().findChild<QLabel*>("conflict")->text(); }

    void choose(const QString& command)
    {
        for (int row = 0; row < table().rowCount(); ++row) {
            if (table().item(row, 1)->text() == command)
                return table().selectRow(row);
        }
        ADD_FAILURE() << "no row " << qPrintable(command);
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(dialog().findChild<KeyStrokeEdit*>(), key, modifiers);
    }

    EmptySettings settings;
    std::unique_ptr<EditorWindow> window;
};

} // namespace

TEST_F(ShortcutsOfTheEditor, ListsAllCommandsOfTheMenus)
{
    open();
    std::set<QString> names;
    for (const Shortcuts::Entry& entry : window->shortcuts().entries()) {
        EXPECT_FALSE(entry.action->objectName().isEmpty());
        EXPECT_TRUE(names.insert(entry.action->objectName()).second) << qPrintable(entry.action->objectName());
    }
    ASSERT_EQ(table().rowCount(), int(names.size()));
    choose("Wipe between both");
    const int row = table().currentRow();
    EXPECT_EQ(table().item(row, 0)->text(), "View > Compare and proof");
    EXPECT_EQ(table().item(row, 2)->text(), "W");
}

TEST_F(ShortcutsOfTheEditor, FilterLeavesWhatItIsIn)
{
    open();
    QTest::keyClicks(dialog().findChild<QLineEdit*>("filter"), "side by");
    int left = 0;
    for (int row = 0; row < table().rowCount(); ++row) {
        left += table().isRowHidden(row) ? 0 : 1;
        EXPECT_EQ(table().isRowHidden(row), table().item(row, 1)->text() != "Side by side");
    }
    EXPECT_EQ(left, 1);
}

TEST_F(ShortcutsOfTheEditor, NewKeysHoldAtOnceAndAtTheNextStart)
{
    open();
    choose("Wipe between both");
    press(Qt::Key_J, Qt::NoModifier);
    press(Qt::Key_K, Qt::ControlModifier); // the last one counts
    button("assign").click();
    EXPECT_EQ(keys("view.wipe"), "Ctrl+K");
    open();
    EXPECT_EQ(keys("view.wipe"), "Ctrl+K");
    EXPECT_EQ(keys("view.beside"), "B");
    choose("Wipe between both");
    button("clear").click();
    open();
    EXPECT_EQ(keys("view.wipe"), "");
    choose("Wipe between both");
    button("reset").click();
    EXPECT_EQ(keys("view.wipe"), "W");
    open();
    EXPECT_EQ(keys("view.wipe"), "W");
}

TEST_F(ShortcutsOfTheEditor, ConflictIsNamedAndTheKeysChangeHandsOnlyWhenAsked)
{
    open();
    choose("Wipe between both");
    EXPECT_TRUE(conflict().trimmed().isEmpty());
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(conflict().contains("Ctrl+E") && conflict().contains("Export picture")) << qPrintable(conflict());
    EXPECT_EQ(keys("view.wipe"), "W"); // refused so far
    const QString exporting = [this] {
        for (const Shortcuts::Entry& entry : window->shortcuts().entries()) {
            if (entry.text == "Export picture")
                return entry.action->objectName();
        }
        return QString();
    }();
    EXPECT_EQ(keys(exporting), "Ctrl+E");
    button("assign").click();
    EXPECT_EQ(keys("view.wipe"), "Ctrl+E");
    EXPECT_EQ(keys(exporting), "");
    open();
    EXPECT_EQ(keys("view.wipe"), "Ctrl+E");
    EXPECT_EQ(keys(exporting), "");
    button("resetAll").click();
    EXPECT_EQ(keys("view.wipe"), "W");
    EXPECT_EQ(keys(exporting), "Ctrl+E");
    EXPECT_TRUE(QSettings().allKeys().filter("editor/shortcuts").isEmpty());
}

TEST_F(ShortcutsOfTheEditor, NamesByPlaceDoNotHangOnTitles)
{
    QWidget parent;
    QMenuBar bar;
    QMenu* const menu = bar.addMenu("Irgendwas");
    QMenu* const inner = menu->addMenu("Innen");
    QAction* const action = inner->addAction("Tu es");
    action->setShortcut(QKeySequence("Ctrl+/"));
    const QAction* const other = inner->addAction("Tu was anderes");
    QMenu* const recent = menu->addMenu("Zuletzt");
    recent->setProperty("changing", true);
    recent->addAction("eins");
    Shortcuts shortcuts(parent);
    shortcuts.takeMenus(bar);
    EXPECT_EQ(action->objectName(), "menu.0.0.Ctrl+slash");
    EXPECT_EQ(other->objectName(), "menu.0.0.1");
    ASSERT_EQ(shortcuts.entries().size(), 2u);
    EXPECT_EQ(shortcuts.entries()[0].place, "Irgendwas > Innen");
}

namespace
{

// The settings are clear again, and the library knows, when the window is gone.
class PreferencesOfTheEditor : public EmptySettings, public Editor
{
protected:
    PreferencesOfTheEditor() { choiceOf(window).selfTest().setProgram(ONDREL_DEVICETEST); }

    static DeviceChoice& choiceOf(EditorWindow& editor) { return editor.preferences().device(); }
    DeviceChoice& choice() { return choiceOf(window); }
    ImagePane& pane() { return window.imagePane(); }

    static PreferencesDialog& dialog(EditorWindow& editor)
    {
        if (!editor.findChild<PreferencesDialog*>())
            editor.findChild<QAction*>("edit.preferences")->trigger();
        return *editor.findChild<PreferencesDialog*>();
    }
    template <class Widget>
    Widget& control(const char* name)
    {
        return *dialog(window).findChild<Widget*>(name);
    }
    void press(QDialogButtonBox::StandardButton button)
    {
        dialog(window).findChild<QDialogButtonBox*>()->button(button)->click();
    }
    void chooseData(const char* name, const QVariant& data)
    {
        auto& box = control<QComboBox>(name);
        ASSERT_GE(box.findData(data), 0) << name;
        box.setCurrentIndex(box.findData(data));
    }

    // A profile in which the same numbers are other colours.
    static QByteArray displayProfile()
    {
        const auto hash = Ondrel::ColorManager::displayProfileAsHash();
        return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
    }

    // A program in the place of the test program.
    QString script(const QString& lines)
    {
        QFile file(path("devicetest.sh"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + lines.toUtf8());
        file.close();
        EXPECT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        return file.fileName();
    }

    static bool isDeviceOn()
    {
        cl::Context context;
        cl::Program program;
        cl::Device device;
        return PixelOpenCL::beginWork(context, program, device) != nullptr;
    }
};

} // namespace

TEST_F(PreferencesOfTheEditor, OtherDisplayProfileChangesThePictureOnTheScreen)
{
    const QImage before = pane().rendered();
    chooseData("profile", proPhotoProfile());
    chooseData("intent", "Saturation");
    EXPECT_EQ(displayProfile(), PreferenceValues::load().displayProfile);
    press(QDialogButtonBox::Apply);
    settle();
    EXPECT_EQ(displayProfile(), proPhotoProfile());
    EXPECT_EQ(Ondrel::ColorManager::getDisplayRenderingIntent(), 2u);
    EXPECT_NE(pane().rendered(), before);
    EXPECT_EQ(pane().rendered(), renderForView(freshPicture(id("photo")), DisplayOptions()));

    control<QCheckBox>("managed").setChecked(false);
    press(QDialogButtonBox::Ok);
    settle();
    EXPECT_FALSE(Ondrel::ColorManager::isColorManagementEnabled());
    EXPECT_EQ(pane().rendered(), Ondrel::ColorTransformer::toQImage(*pane().picture().image, true));
}

TEST_F(PreferencesOfTheEditor, CancelChangesNothing)
{
    chooseData("profile", proPhotoProfile());
    control<QSpinBox>("cache").setValue(100);
    press(QDialogButtonBox::Cancel);
    settle();
    EXPECT_NE(displayProfile(), proPhotoProfile());
    EXPECT_TRUE(QSettings().allKeys().filter("settings/").isEmpty());
}

TEST_F(PreferencesOfTheEditor, SettingsSurviveARestart)
{
    chooseData("profile", proPhotoProfile());
    chooseData("intent", "Relative Colorimetric");
    control<QCheckBox>("managedThumbnails").setChecked(true);
    chooseData("thumbnailFilter", "Bicubic");
    control<QSpinBox>("cache").setValue(300);
    press(QDialogButtonBox::Ok);
    settle();
    const QSettings settings;
    EXPECT_EQ(settings.value("settings/colormanagement/colormanagement"), "Enabled");
    EXPECT_EQ(settings.value("settings/colormanagement/displayprofile"), proPhotoProfile());
    EXPECT_EQ(settings.value("settings/colormanagement/displayrenderingintent"), "Relative Colorimetric");
    EXPECT_NE(settings.value("settings/colormanagement/thumbnails"), "No");
    EXPECT_EQ(settings.value("settings/performance/interpolation/thumbnail"), "Bicubic");

    EditorWindow later(nodeTypes());
    choiceOf(later).selfTest().setProgram(ONDREL_DEVICETEST);
    EXPECT_EQ(later.pictures().evaluator().cache().byteBudget(), std::size_t(300) << 20);
    PreferencesDialog& shown = dialog(later);
    EXPECT_EQ(shown.findChild<QComboBox*>("profile")->currentData(), proPhotoProfile());
    EXPECT_EQ(shown.findChild<QComboBox*>("intent")->currentData(), "Relative Colorimetric");
    EXPECT_TRUE(shown.findChild<QCheckBox*>("managed")->isChecked());
    EXPECT_TRUE(shown.findChild<QCheckBox*>("managedThumbnails")->isChecked());
    EXPECT_EQ(shown.findChild<QComboBox*>("thumbnailFilter")->currentData(), "Bicubic");
    EXPECT_EQ(shown.findChild<QSpinBox*>("cache")->value(), 300);
}

TEST_F(PreferencesOfTheEditor, SettingsThatMakeNoSenseAreTheDefaults)
{
    QSettings settings;
    settings.setValue("settings/colormanagement/displayprofile", QByteArray(7, 'x'));
    settings.setValue("settings/colormanagement/displayrenderingintent", 5);
    settings.setValue("settings/performance/interpolation/thumbnail", "Magic");
    settings.setValue("editor/cachemegabytes", "much");
    const PreferenceValues values = PreferenceValues::load();
    settings.clear();
    EXPECT_TRUE(values.showsAs(PreferenceValues::load()));
    EXPECT_EQ(values.cacheMegabytes, 1024);
    settings.setValue("editor/cachemegabytes", -5);
    EXPECT_EQ(PreferenceValues::load().cacheMegabytes, kLeastCacheMegabytes);
}

// The store is locked, so that the evaluation of a picture cannot come to its end.
TEST_F(PreferencesOfTheEditor, DisplaySettingsChangeOnlyWhenNoPictureIsAtWork)
{
    StoreHeldByAnother held;
    window.pictures().evaluator().cache().clear();
    window.pictures().schedule();
    QTest::qWait(50);
    ASSERT_TRUE(window.pictures().evaluator().isBusy());
    PreferenceValues values = PreferenceValues::load();
    values.displayProfile = proPhotoProfile();
    window.preferences().apply(values);
    pane().setPicture(Picture()); // more that is not to begin
    QTest::qWait(200);
    EXPECT_TRUE(window.preferences().isBusy());
    EXPECT_NE(displayProfile(), proPhotoProfile());
    held.release();
    settle();
    EXPECT_EQ(displayProfile(), proPhotoProfile());
    EXPECT_EQ(pane().rendered(), renderForView(freshPicture(id("photo")), DisplayOptions()));
}

TEST_F(PreferencesOfTheEditor, ResultsThatHangOnTheDisplayAreComputedAnew)
{
    play("add essentials/softproof 260 0 Proof\nkey A\nwire photo image Proof image\nshow Proof\nwait");
    const Picture before = pane().picture();
    chooseData("profile", proPhotoProfile());
    press(QDialogButtonBox::Apply);
    settle();
    EXPECT_FALSE(equalPictures(pane().picture(), before));
    EXPECT_TRUE(equalPictures(pane().picture(), freshPicture(id("Proof"))));
}

TEST_F(PreferencesOfTheEditor, ThumbnailsOfNodesAreRenderedAnew)
{
    const auto thumbnail = [this] {
        settle();
        QThreadPool::globalInstance()->waitForDone();
        QApplication::processEvents();
        const QGraphicsItem* const item = window.scene().item(id("photo"));
        QImage image(item->sceneBoundingRect().size().toSize(), QImage::Format_RGB32);
        image.fill(0);
        QPainter painter(&image);
        window.scene().render(&painter, QRectF(), item->sceneBoundingRect());
        return image;
    };
    const QImage before = thumbnail();
    ASSERT_EQ(thumbnail(), before);
    chooseData("profile", proPhotoProfile());
    press(QDialogButtonBox::Apply);
    EXPECT_EQ(thumbnail(), before); // not managed
    control<QCheckBox>("managedThumbnails").setChecked(true);
    press(QDialogButtonBox::Apply);
    EXPECT_NE(thumbnail(), before);
}

TEST_F(PreferencesOfTheEditor, CacheHasItsBudgetAtOnce)
{
    play("add essentials/gradient 0 400 Large\nset Large width 3000\nset Large height 3000\nshow Large\nwait");
    ResultCache& cache = window.pictures().evaluator().cache();
    ASSERT_GT(cache.bytes(), std::size_t(64) << 20);
    control<QSpinBox>("cache").setValue(64);
    press(QDialogButtonBox::Apply);
    EXPECT_EQ(cache.byteBudget(), std::size_t(64) << 20);
    EXPECT_LE(cache.bytes(), cache.byteBudget());
}

TEST_F(PreferencesOfTheEditor, DeviceIsTestedOnceAndUsedAgainAtTheNextStart)
{
    const QString log = path("log");
    choice().selfTest().setProgram(
        script("echo \"$1\" >> " + log + "\nexec " + QString(ONDREL_DEVICETEST) + " \"$@\"\n"));
    auto& box = control<QComboBox>("device");
    ASSERT_TRUE(QTest::qWaitFor([&] { return box.isEnabled(); }, 60000)) << "no OpenCL device";
    box.setCurrentIndex(1);
    const QString name = box.currentText();
    EXPECT_FALSE(isDeviceOn());
    press(QDialogButtonBox::Apply);
    EXPECT_TRUE(control<QLabel>("deviceState").text().contains("Testing"));
    settle();
    EXPECT_EQ(choice().inUse(), name);
    EXPECT_TRUE(control<QLabel>("deviceState").text().contains(name));
    EXPECT_TRUE(isDeviceOn());
    PixelOpenCL::instance()->disable();

    EditorWindow later(nodeTypes());
    EXPECT_TRUE(later.findChildren<QProcess*>().isEmpty());
    EXPECT_FALSE(isDeviceOn()); // not by its construction
    choiceOf(later).selfTest().setProgram(path("devicetest.sh"));
    choiceOf(later).start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return choiceOf(later).inUse() == name; }, 60000));
    EXPECT_TRUE(isDeviceOn());
    QFile lines(log);
    ASSERT_TRUE(lines.open(QIODevice::ReadOnly));
    EXPECT_EQ(lines.readAll(), "list\ntest\nlist\n");

    choiceOf(later).chooseNone();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !choiceOf(later).isBusy(); }));
    EXPECT_FALSE(isDeviceOn());
    EXPECT_TRUE(choiceOf(later).kept().isEmpty());
}

TEST_F(PreferencesOfTheEditor, DeviceThatFailsItsTestIsNotUsedAndNotTestedAgain)
{
    const QString name = "Broken";
    const std::pair<const char*, const char*> drivers[] = {
        {"kill -SEGV $$", "crashed"},
        {"exec sleep 60", "come to an end"},
        {"echo 'compiler says nothing'; exit 1", "failed"},
        {"echo 'no answer'", "failed"},
        {"echo; echo '{\"passed\": false, \"reason\": \"Scaling differs.\"}'", "Scaling differs."}};
    for (const auto& [lines, word] : drivers) {
        const DeviceInfo device{0, 0, name, lines};
        const QString log = path("log");
        QFile::remove(log);
        choice().selfTest().setProgram(script("echo run >> " + log + "\n" + lines + "\n"));
        choice().selfTest().setTimeLimit(2000);
        for (int i = 0; i < 2; ++i) {
            window.statusBar()->clearMessage();
            choice().choose(device);
            settle();
            EXPECT_TRUE(choice().inUse().isEmpty()) << lines;
            EXPECT_TRUE(choice().kept().isEmpty()) << lines;
            EXPECT_TRUE(status().contains(name) && status().contains(word)) << lines << ": " << qPrintable(status());
            EXPECT_FALSE(isDeviceOn()) << lines;
        }
        QFile ran(log);
        ASSERT_TRUE(ran.open(QIODevice::ReadOnly));
        EXPECT_EQ(ran.readAll(), "run\n") << lines;
    }
}

TEST_F(PreferencesOfTheEditor, DeviceIsTestedAgainWhenAsked)
{
    const QString log = path("log");
    choice().selfTest().setProgram(
        script("echo $1 >> " + log +
               "\n[ $1 = list ] && exec echo '{\"devices\": [{\"name\": \"Card\", \"driver\": \"1\", "
               "\"platform\": 0, \"device\": 0}]}'\necho '{\"passed\": false, \"reason\": \"Hot.\"}'\n"));
    auto& box = control<QComboBox>("device");
    ASSERT_TRUE(QTest::qWaitFor([&] { return box.isEnabled(); }));
    EXPECT_FALSE(control<QPushButton>("testAgain").isEnabled());
    box.setCurrentIndex(1);
    press(QDialogButtonBox::Apply);
    settle();
    press(QDialogButtonBox::Apply); // nothing new
    settle();
    EXPECT_TRUE(control<QLabel>("deviceState").text().contains("Hot.")) << qPrintable(choice().state());
    control<QPushButton>("testAgain").click();
    settle();
    QFile ran(log);
    ASSERT_TRUE(ran.open(QIODevice::ReadOnly));
    EXPECT_EQ(ran.readAll(), "list\ntest\ntest\n");
}

TEST_F(PreferencesOfTheEditor, OtherPreferencesLeaveADeviceThatIsNotThereChosen)
{
    QSettings().setValue("editor/opencl/device", "Taken out");
    choice().selfTest().setProgram(script("echo '{\"devices\": []}'\n"));
    auto& box = control<QComboBox>("device");
    ASSERT_TRUE(QTest::qWaitFor([&] { return box.isEnabled(); }));
    control<QSpinBox>("cache").setValue(400);
    press(QDialogButtonBox::Ok);
    settle();
    EXPECT_EQ(choice().kept(), "Taken out");
}

TEST_F(PreferencesOfTheEditor, AnotherDriverIsTestedAnew)
{
    const QString log = path("log");
    choice().selfTest().setProgram(
        script("echo run >> " + log + "\necho '{\"passed\": false, \"reason\": \"Old.\"}'\n"));
    for (const char* const driver : {"1.0", "1.1", "1.0"}) {
        choice().choose({0, 0, "Card", driver});
        settle();
    }
    QFile ran(log);
    ASSERT_TRUE(ran.open(QIODevice::ReadOnly));
    EXPECT_EQ(ran.readAll(), "run\nrun\n");
}

TEST_F(PreferencesOfTheEditor, DeviceThatIsGoneIsNamedAtTheStart)
{
    QSettings().setValue("editor/opencl/device", "Taken out");
    choice().selfTest().setProgram(script("echo '{\"devices\": []}'\n"));
    choice().start();
    settle();
    EXPECT_TRUE(status().contains("Taken out")) << qPrintable(status());
    EXPECT_EQ(choice().kept(), "Taken out"); // it may be back
    choice().selfTest().setProgram(path("missing"));
    choice().start();
    settle();
    EXPECT_TRUE(choice().inUse().isEmpty());
}

TEST_F(PreferencesOfTheEditor, LastOfSeveralChoicesHolds)
{
    choice().selfTest().setProgram(script("sleep 1\necho '{\"passed\": true}'\n"));
    choice().choose({0, 0, "Slow", "1"});
    choice().chooseNone(); // while it is tested
    settle();
    EXPECT_TRUE(choice().inUse().isEmpty());
    EXPECT_FALSE(isDeviceOn());
    choice().choose({0, 0, "Slow", "1"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return choice().state().contains("Opening"); }));
    choice().chooseNone(); // while it is opened
    settle();
    EXPECT_TRUE(choice().inUse().isEmpty());
    EXPECT_FALSE(isDeviceOn());
}

TEST(DeviceTest, AnswersInJsonAndRefusesOtherWords)
{
    const auto run = [](const QStringList& words, QByteArray& output) {
        QProcess process;
        process.start(ONDREL_DEVICETEST, words);
        EXPECT_TRUE(process.waitForFinished(120000));
        output = process.readAllStandardOutput();
        return process.exitCode();
    };
    QByteArray output;
    EXPECT_EQ(run({"list"}, output), 0);
    const auto lastLine = [&output] { return QJsonDocument::fromJson(output.trimmed().split('\n').last()).object(); };
    EXPECT_TRUE(lastLine().value("devices").isArray());
    EXPECT_EQ(run({"test", "9999", "0"}, output), 0); // no such device
    EXPECT_FALSE(lastLine().value("passed").toBool(true));
    EXPECT_FALSE(lastLine().value("reason").toString().isEmpty());
    EXPECT_EQ(run({}, output), 2);
    EXPECT_EQ(run({"test", "x", "0"}, output), 2);
}
