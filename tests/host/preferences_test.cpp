// What the user changes of the editor itself, by the user's events.

#include "editorfixture.h"
#include "keystrokeedit.h"
#include "shortcuts.h"
#include "shortcutsdialog.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>
#include <QTest>

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
    ~EmptySettings() { clear(); }
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
    action->setShortcut(QKeySequence("Ctrl+T"));
    QMenu* const recent = menu->addMenu("Zuletzt");
    recent->setProperty("changing", true);
    recent->addAction("eins");
    Shortcuts shortcuts(parent);
    shortcuts.takeMenus(bar);
    EXPECT_EQ(action->objectName(), "menu.0.0.0");
    ASSERT_EQ(shortcuts.entries().size(), 1u);
    EXPECT_EQ(shortcuts.entries()[0].place, "Irgendwas > Innen");
}
