#include "fieldsupport.h"

#include <ondrel/nodes/fields/iconpushbuttonfield.h>
#include <ondrel/nodes/fields/pushbuttonfield.h>
#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/pushbutton.h>

#include <QFile>
#include <QTemporaryDir>

namespace
{

using namespace OndrelTest;
using Ondrel::IconPushButton;
using Ondrel::IconPushButtonInputField;
using Ondrel::PushButton;
using Ondrel::PushButtonInputField;

constexpr char kLongText[] = "A caption of more than one hundred and fifty pixels";

TEST(PushButtonInputField, IsAsWideAsItsTextsButAtLeast150)
{
    PushButtonInputField narrow("go", nullptr, "", "Go");
    EXPECT_EQ(narrow.minWidth(), 150);
    EXPECT_EQ(narrow.anchor(), nullptr);
    PushButtonInputField wide("go", nullptr, "Label", kLongText);
    EXPECT_EQ(wide.minWidth(), fieldTextWidth("Label") + 10 + fieldTextWidth(kLongText));
    EXPECT_GT(wide.minWidth(), 150);
    EXPECT_EQ(wide.labelWidth(), fieldTextWidth("Label"));
    EXPECT_EQ(wide.displayName(), "Label");
}

TEST(PushButtonInputField, FillsItsRow)
{
    QGraphicsScene scene;
    auto* field = new PushButtonInputField("go", nullptr, "Label", kLongText);
    field->setSize(300, 24, 80);
    scene.addItem(field);
    auto* button = widgetOf<PushButton>(*field);
    EXPECT_EQ(button->text(), kLongText);
    EXPECT_EQ(field->minHeight(), button->height());
    field->setSize(300.75F, 24, 80);
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(0, 0));
    EXPECT_EQ(proxyOf(*field)->parentItem(), field);
    EXPECT_EQ(button->minimumWidth(), 300);
    EXPECT_EQ(button->maximumWidth(), 300);
}

TEST(PushButtonInputField, StartsAtItsLeastWidth)
{
    QGraphicsScene scene;
    auto* field = new PushButtonInputField("go", nullptr, "", "Go");
    scene.addItem(field);
    auto* button = widgetOf<PushButton>(*field);
    EXPECT_EQ(button->minimumWidth(), 150);
    EXPECT_EQ(button->maximumWidth(), 150);
}

TEST(PushButtonInputField, PassesClicksOn)
{
    GraphView graph;
    auto* field = graph.add(new PushButtonInputField("go", nullptr, "", "Go"), {50, 50});
    field->setSize(200, 24, 0);
    QSignalSpy clicked(field, SIGNAL(clicked(bool)));
    graph.click(proxyOf(*field)->sceneBoundingRect().center());
    ASSERT_EQ(clicked.count(), 1);
    EXPECT_FALSE(clicked[0][0].toBool());
}

TEST(PushButtonInputField, HasItsStyleSheetIfThereIsOne)
{
    QGraphicsScene scene;
    auto* styled = new PushButtonInputField("go", nullptr, "", "Go");
    scene.addItem(styled);
    EXPECT_EQ(widgetOf<PushButton>(*styled)->styleSheet(), styleSheet("pushbutton.css"));
    const NoDataDirectory nothing;
    auto* plain = new PushButtonInputField("go", nullptr, "", "Go");
    scene.addItem(plain);
    EXPECT_EQ(widgetOf<PushButton>(*plain)->styleSheet(), QString());
}

TEST(PushButtonInputField, OwnsItsButton)
{
    expectNoWidgetLeft([] { return new PushButtonInputField("go", nullptr, "Label", "Go"); });
}

// Two icons that differ in colour.
class IconField : public testing::Test
{
protected:
    IconField()
        : red(icon("red.svg", "#ff0000"))
        , green(icon("green.svg", "#00ff00"))
    {
    }
    QString icon(const QString& name, const QString& color) const
    {
        QFile file(directory.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QString("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"16\" viewBox=\"0 0 16 16\">"
                           "<rect width=\"16\" height=\"16\" fill=\"%1\"/></svg>")
                       .arg(color)
                       .toLatin1());
        return file.fileName();
    }
    IconPushButton* show(IconPushButtonInputField* field)
    {
        scene.addItem(field);
        field->setSize(24, 24, 0);
        return widgetOf<IconPushButton>(*field);
    }
    static QColor center(QWidget* button) { return button->grab().toImage().pixelColor(12, 12); }

    QTemporaryDir directory;
    QString red, green;
    QGraphicsScene scene;
};

TEST_F(IconField, IsASmallButton)
{
    auto* field = new IconPushButtonInputField("flip", nullptr, red, "Flips the picture");
    EXPECT_EQ(field->name(), "flip");
    EXPECT_EQ(field->displayName(), "");
    EXPECT_EQ(field->anchor(), nullptr);
    EXPECT_EQ(field->minWidth(), 24);
    EXPECT_EQ(field->minHeight(), 24);
    EXPECT_EQ(field->labelWidth(), 0);
    IconPushButton* const button = show(field);
    EXPECT_EQ(button->toolTip(), "Flips the picture");
    EXPECT_FALSE(button->isCheckable());
    EXPECT_FALSE(field->isChecked());
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(0, 0));
    EXPECT_EQ(proxyOf(*field)->parentItem(), field);
    EXPECT_EQ(center(button), QColor(Qt::red));

    IconPushButton reference(red, nullptr);
    reference.setBevel(IconPushButton::BevelDrawn);
    reference.setFixedSize(24, 24);
    EXPECT_EQ(button->grab().toImage(), reference.grab().toImage());
}

TEST_F(IconField, FitsItsButtonInBothDirections)
{
    auto* field = new IconPushButtonInputField("flip", nullptr, red, "");
    scene.addItem(field);
    field->setSize(40.75F, 30.5F, 80);
    EXPECT_EQ(widgetOf<IconPushButton>(*field)->minimumSize(), QSize(40, 30));
    EXPECT_EQ(widgetOf<IconPushButton>(*field)->maximumSize(), QSize(40, 30));
    EXPECT_EQ(widgetOf<IconPushButton>(*field)->size(), QSize(40, 30));
    EXPECT_EQ(proxyOf(*field)->size(), QSizeF(40, 30));
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(0, 0));
}

TEST_F(IconField, ShowsItsFirstIconWhileChecked)
{
    auto* field = new IconPushButtonInputField("flip", nullptr, red, green, true, "Tip");
    IconPushButton* const button = show(field);
    EXPECT_TRUE(button->isCheckable());
    EXPECT_EQ(button->toolTip(), "Tip");
    EXPECT_TRUE(field->isChecked());
    EXPECT_EQ(center(button), QColor(Qt::red));
    field->setChecked(false);
    EXPECT_FALSE(field->isChecked());
    EXPECT_EQ(center(button), QColor(Qt::green));
    IconPushButtonInputField unchecked("flip", nullptr, red, green, false, "");
    EXPECT_FALSE(unchecked.isChecked());
}

TEST_F(IconField, PassesClicksOnWithTheState)
{
    GraphView graph;
    auto* field = graph.add(new IconPushButtonInputField("flip", nullptr, red, green, false, ""), {50, 50});
    field->setSize(24, 24, 0);
    QSignalSpy clicked(field, SIGNAL(clicked(bool)));
    const QPointF point = proxyOf(*field)->sceneBoundingRect().center();
    graph.click(point);
    graph.click(point);
    ASSERT_EQ(clicked.count(), 2);
    EXPECT_TRUE(clicked[0][0].toBool());
    EXPECT_FALSE(clicked[1][0].toBool());
    field->setChecked(true);
    EXPECT_EQ(clicked.count(), 2) << "only the user clicks";
}

TEST_F(IconField, OwnsItsButton)
{
    expectNoWidgetLeft([this] { return new IconPushButtonInputField("flip", nullptr, red, ""); });
    expectNoWidgetLeft([this] { return new IconPushButtonInputField("flip", nullptr, red, green, true, ""); });
}

} // namespace
