#include "tests/widgets/widgetevents.h"

#include <ondrel/core/platform.h>
#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/lineedit.h>
#include <ondrel/widgets/pushbutton.h>
#include <ondrel/widgets/widgethelpers.h>

#include <QAccessible>
#include <QDialog>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace
{

using namespace OndrelTest;
using Ondrel::IconPushButton;

QColor pixel(QWidget& widget, int x, int y)
{
    return widget.grab().toImage().pixelColor(x, y);
}

// A picture, black all over, of a width of its own, so that each icon is told from another.
class Icons
{
public:
    QString add(const QString& name, int size, const QString& color = "#000000") const
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QString("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%1\" viewBox=\"0 0 %1 %1\">"
                           "<rect width=\"%1\" height=\"%1\" fill=\"%2\"/></svg>")
                       .arg(size)
                       .arg(color)
                       .toLatin1());
        return path;
    }

private:
    QTemporaryDir m_folder;
};

constexpr int kSize = 40;

std::unique_ptr<IconPushButton> iconButton(const QString& icon, IconPushButton::Bevel bevel)
{
    auto button = std::make_unique<IconPushButton>(icon, nullptr);
    button->setBevel(bevel);
    button->setFixedSize(kSize, kSize);
    return button;
}

TEST(PushButton, PaintsTheNodesColourBehindItself)
{
    Ondrel::PushButton button("Apply", nullptr);
    button.setStyleSheet("QPushButton { background: transparent; border: none; }");
    button.resize(100, 30);
    EXPECT_EQ(pixel(button, 2, 2), QColor(76, 75, 75));
    EXPECT_EQ(button.text(), "Apply");
}

TEST(PushButton, IsClickedByMouseKeyboardAndInAScene)
{
    auto* button = new Ondrel::PushButton("Apply", nullptr);
    QSignalSpy clicked(button, SIGNAL(clicked()));
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_EQ(clicked.count(), 2);
    SceneHost host(button, 2);
    host.click(button->rect().center());
    EXPECT_EQ(clicked.count(), 3);
}

TEST(IconPushButton, DrawsTheIconInTheTextColour)
{
    const Icons icons;
    auto button = iconButton(icons.add("plain.svg", 10), IconPushButton::BevelNone);
    const QColor text = QApplication::palette(button.get()).color(QPalette::ButtonText);
    // Its corner is at (40 - 7) / 2 + 4 - 10 / 2 = 15.5.
    EXPECT_EQ(pixel(*button, 20, 20), text);
    EXPECT_EQ(pixel(*button, 16, 24), text);
    EXPECT_NE(pixel(*button, 14, 20), text);
    EXPECT_NE(pixel(*button, 20, 26), text);
    button->setEnabled(false);
    EXPECT_EQ(pixel(*button, 20, 20), QColor(0x4D, 0x4D, 0x4D));
}

TEST(IconPushButton, AMissingIconLeavesItEmpty)
{
    auto button = iconButton("no such icon.svg", IconPushButton::BevelDrawn);
    EXPECT_FALSE(button->grab().isNull());
    button->setCheckableIcons("", "neither this.svg");
    EXPECT_TRUE(button->isCheckable());
    EXPECT_FALSE(button->grab().isNull());
}

TEST(IconPushButton, BareNamesAreIconsOfTheLibrary)
{
    ASSERT_TRUE(QFile::exists(Ondrel::Platform::IconsDirectory() + "node_primary.svg"));
    auto named = iconButton("node_primary.svg", IconPushButton::BevelDrawn);
    auto empty = iconButton("no such icon.svg", IconPushButton::BevelDrawn);
    EXPECT_NE(named->grab().toImage(), empty->grab().toImage());
}

TEST(IconPushButton, EachStateHasItsIcon)
{
    const Icons icons;
    auto button = iconButton(icons.add("plain.svg", 10, "#ff0000"), IconPushButton::BevelNone);
    EXPECT_EQ(pixel(*button, 20, 20), QColor(255, 0, 0));
    button->setCheckableIcons(icons.add("checked.svg", 10), icons.add("unchecked.svg", 10, "#0000ff"));
    EXPECT_EQ(pixel(*button, 20, 20), QColor(0, 0, 255));
    button->setChecked(true);
    EXPECT_EQ(pixel(*button, 20, 20), QApplication::palette(button.get()).color(QPalette::ButtonText));
    button->setEnabled(false);
    EXPECT_EQ(pixel(*button, 20, 20), QColor(0x4D, 0x4D, 0x4D)) << "checked, in the disabled colour";
    button->setChecked(false);
    EXPECT_EQ(pixel(*button, 20, 20), QColor(0, 0, 255)) << "only black is replaced";
}

// Between the stops of a gradient.
void expectShade(const QColor& color, int bottom, int top, const char* state)
{
    EXPECT_GE(color.red(), bottom) << state;
    EXPECT_LE(color.red(), top) << state;
    EXPECT_GE(color.red(), color.blue()) << state;
    EXPECT_LE(color.red() - color.blue(), 1) << state;
}

TEST(IconPushButton, TheBevelShowsTheState)
{
    auto button = iconButton("no such icon.svg", IconPushButton::BevelDrawn);
    expectShade(pixel(*button, 20, 3), 60, 62, "plain, top");
    expectShade(pixel(*button, 20, 36), 52, 54, "plain, bottom");
    setHovered(*button, true);
    expectShade(pixel(*button, 20, 3), 62, 64, "hovered, top");
    expectShade(pixel(*button, 20, 36), 54, 56, "hovered, bottom");
    button->setDown(true);
    EXPECT_EQ(pixel(*button, 20, 3), QColor(48, 47, 47)) << "pressed comes before hovered";
    EXPECT_EQ(pixel(*button, 20, 36), QColor(48, 47, 47));
    button->setEnabled(false);
    expectShade(pixel(*button, 20, 3), 63, 65, "disabled comes first, top");
    expectShade(pixel(*button, 20, 36), 56, 58, "disabled, bottom");
}

TEST(IconPushButton, TheStylesButtonAndNoBevelDiffer)
{
    const Icons icons;
    const QString icon = icons.add("plain.svg", 10);
    const QImage drawn = iconButton(icon, IconPushButton::BevelDrawn)->grab().toImage();
    const QImage none = iconButton(icon, IconPushButton::BevelNone)->grab().toImage();
    EXPECT_NE(drawn, none);
    const auto further = iconButton(icon, static_cast<IconPushButton::Bevel>(3));
    EXPECT_EQ(further->grab().toImage(), none);
    auto styled = std::make_unique<IconPushButton>(icon, nullptr);
    styled->setFixedSize(kSize, kSize);
    styled->setStyleSheet("QPushButton { background-color: rgb(10, 200, 30); border: none; }");
    EXPECT_EQ(pixel(*styled, 5, 5), QColor(10, 200, 30)) << "at the start it is the style's";
    EXPECT_EQ(pixel(*styled, 20, 20), QApplication::palette(styled.get()).color(QPalette::ButtonText));
}

TEST(IconPushButton, WorksInAScene)
{
    const Icons icons;
    auto* button = new IconPushButton(icons.add("plain.svg", 10), nullptr);
    button->setCheckableIcons(icons.add("checked.svg", 10), icons.add("unchecked.svg", 10));
    QSignalSpy toggled(button, SIGNAL(toggled(bool)));
    SceneHost host(button, 0.5);
    host.click(button->rect().center());
    ASSERT_EQ(toggled.count(), 1);
    EXPECT_TRUE(toggled.at(0).at(0).toBool());
    EXPECT_TRUE(button->isChecked());
}

TEST(LineEdit, RoundCornersInTheBackgroundColour)
{
    Ondrel::LineEdit edit(nullptr);
    // The style sheet's own background ends at its margin.
    edit.setStyleSheet("QLineEdit { background-color: rgb(1, 200, 3); border: none; margin: 6px; }");
    edit.resize(120, 24);
    QImage image(edit.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    edit.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_EQ(image.pixelColor(60, 2), QColor(1, 200, 3));
    EXPECT_EQ(image.pixelColor(119, 12), QColor(1, 200, 3));
    EXPECT_EQ(image.pixelColor(60, 0).alpha(), 0) << "it starts a pixel below the top";
    EXPECT_LT(image.pixelColor(0, 1).alpha(), 255) << "the corner is round";
}

TEST(LineEdit, TakesTheStyleSheet)
{
    QFile file(Ondrel::Platform::StylesDirectory() + "lineedit.css");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(Ondrel::LineEdit(nullptr).styleSheet(), QString::fromLatin1(file.readAll()));
}

TEST(LineEdit, IsTypedIntoPlainAndInAScene)
{
    auto* edit = new Ondrel::LineEdit(nullptr);
    QTest::keyClicks(edit, "ab");
    EXPECT_EQ(edit->text(), "ab");
    SceneHost host(edit);
    host.click(edit->rect().center());
    QTest::keyClicks(host.view.viewport(), "c");
    EXPECT_EQ(edit->text(), "abc");
}

TEST(CenterDialog, ComesOntoItsParent)
{
    QWidget parent;
    parent.setGeometry(100, 50, 401, 300);
    parent.show();
    QDialog dialog(&parent);
    dialog.resize(121, 80);
    Ondrel::CenterDialogToParent(&dialog);
    EXPECT_EQ(dialog.pos(), QPoint((100 + 500) / 2 - 60, (50 + 349) / 2 - 40));
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(dialog.testAttribute(Qt::WA_DontShowOnScreen));
}

TEST(CenterDialog, WithoutAParentNothingMoves)
{
    QDialog dialog;
    dialog.move(37, 41);
    Ondrel::CenterDialogToParent(&dialog);
    EXPECT_EQ(dialog.pos(), QPoint(37, 41));
}

TEST(Buttons, AreReadByAScreenReader)
{
    Ondrel::PushButton button("Apply", nullptr);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&button);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Apply");

    IconPushButton icon("node_primary.svg", nullptr);
    icon.setAccessibleName("Primary");
    icon.setCheckableIcons("node_primary.svg", "node_secondary.svg");
    icon.setChecked(true);
    accessible = QAccessible::queryAccessibleInterface(&icon);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Primary");
    EXPECT_TRUE(accessible->state().checkable);
    EXPECT_TRUE(accessible->state().checked);

    Ondrel::LineEdit edit(nullptr);
    edit.setText("value");
    accessible = QAccessible::queryAccessibleInterface(&edit);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
    EXPECT_EQ(accessible->text(QAccessible::Value), "value");
}

} // namespace
