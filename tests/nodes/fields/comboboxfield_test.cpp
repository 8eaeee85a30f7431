#include "fieldsupport.h"

#include <ondrel/core/platform.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QListWidget>

namespace
{

using namespace OndrelTest;
using Ondrel::ComboBoxInputField;
using Ondrel::ListComboBox;
using Ondrel::ThumbnailComboBox;

const QStringList kChoices{"Normal", "Screen", "--", "screen", "Multiply"};

std::unique_ptr<ComboBoxInputField> field(const QStringList& choices = kChoices, int initial = 0,
                                          ComboBoxInputField::DisplayStyle style = ComboBoxInputField::List)
{
    return std::make_unique<ComboBoxInputField>("blend", nullptr, "Blend", choices, initial, style);
}

struct Shown {
    explicit Shown(const QStringList& choices = kChoices, int initial = 0,
                   ComboBoxInputField::DisplayStyle style = ComboBoxInputField::List)
        : field(graph.add(::field(choices, initial, style).release(), {50, 50}))
        , box(widgetOf<QComboBox>(*field))
    {
    }
    GraphView graph;
    ComboBoxInputField* field;
    QComboBox* box;
};

TEST(ComboBoxInputField, HasTwoStyles)
{
    EXPECT_EQ(static_cast<int>(ComboBoxInputField::List), 0);
    EXPECT_EQ(static_cast<int>(ComboBoxInputField::Thumbnails), 1);
    Shown list, thumbnails(kChoices, 0, ComboBoxInputField::Thumbnails);
    EXPECT_NE(qobject_cast<ListComboBox*>(list.box), nullptr);
    EXPECT_NE(qobject_cast<ThumbnailComboBox*>(thumbnails.box), nullptr);
}

TEST(ComboBoxInputField, MeasuresItsLabelAndItsBox)
{
    Shown shown;
    EXPECT_EQ(shown.field->anchor(), nullptr);
    EXPECT_EQ(shown.field->labelWidth(), fieldTextWidth("Blend"));
    EXPECT_EQ(shown.field->minWidth(), fieldTextWidth("Blend") + static_cast<float>(shown.box->sizeHint().width()));
    EXPECT_EQ(shown.field->minHeight(), shown.box->minimumSizeHint().height());
    EXPECT_EQ(proxyOf(*shown.field)->parentItem(), shown.field);
    EXPECT_EQ(proxyOf(*shown.field)->pos(), QPointF(fieldTextWidth("Blend"), 0));
}

TEST(ComboBoxInputField, FitsItsBoxBehindTheLabelColumn)
{
    auto early = field();
    early->setSize(300, 24, 80);
    Shown shown;
    shown.field->setSize(300.75F, 24, 80);
    EXPECT_EQ(proxyOf(*shown.field)->pos(), QPointF(84, 0));
    EXPECT_EQ(shown.box->minimumWidth(), 216);
    EXPECT_EQ(shown.box->maximumWidth(), 216);
    EXPECT_EQ(shown.box->width(), 216);
    EXPECT_EQ(proxyOf(*shown.field)->size().width(), 216);
}

TEST(ComboBoxInputField, ListsItsChoicesWithSeparators)
{
    Shown shown(kChoices, 1);
    EXPECT_EQ(shown.box->count(), 5);
    EXPECT_EQ(shown.field->currentIndex(), 1);
    EXPECT_EQ(shown.field->currentText(), "Screen");
    const std::vector<QVariant> expected{"Normal", "Screen", "", "screen", "Multiply"};
    EXPECT_EQ(shown.field->values(), expected);
    for (const QVariant& value : shown.field->values())
        EXPECT_EQ(value.type(), QVariant::String);
    auto* list = qobject_cast<QListWidget*>(shown.box->view());
    ASSERT_NE(list, nullptr);
    ASSERT_NE(list->itemWidget(list->item(2)), nullptr);
    EXPECT_EQ(list->itemWidget(list->item(2))->objectName(), "node_combobox_dropdown_separator");
    EXPECT_EQ(list->itemWidget(list->item(1)), nullptr);
    EXPECT_TRUE(shown.box->itemIcon(0).isNull());
    EXPECT_FALSE(shown.box->itemData(0).isValid());
}

TEST(ComboBoxInputField, OnlyExactlyTwoHyphensSeparate)
{
    const QStringList choices{"-", "---", " --", "--"};
    const std::vector<QVariant> expected{"-", "---", " --", ""};
    EXPECT_EQ(field(choices)->values(), expected);
}

TEST(ComboBoxInputField, ThumbnailsHaveNoSeparators)
{
    const std::vector<QVariant> expected{"a", "--", "b"};
    EXPECT_EQ(field({"a", "--", "b"}, 0, ComboBoxInputField::Thumbnails)->values(), expected);
}

TEST(ComboBoxInputField, SetChoicesMakesNoSeparatorsAndIsSilent)
{
    Shown shown(kChoices, 4);
    QSignalSpy changed(shown.field, SIGNAL(currentIndexChanged(int)));
    shown.field->setChoices({"x", "--", "z"});
    const std::vector<QVariant> expected{"x", "--", "z"};
    EXPECT_EQ(shown.field->values(), expected);
    EXPECT_EQ(shown.field->currentIndex(), 0);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_FALSE(shown.box->signalsBlocked());
    shown.field->setChoices({});
    EXPECT_EQ(shown.field->currentIndex(), -1);
    EXPECT_EQ(shown.field->currentText(), "");
    EXPECT_EQ(changed.count(), 0);
    shown.field->setCurrentIndex(0);
    EXPECT_EQ(changed.count(), 0);
}

TEST(ComboBoxInputField, AnInitialIndexOutOfRangeLeavesTheBoxItsOwnChoice)
{
    EXPECT_EQ(field({"a", "b"}, 7)->currentIndex(), 0);
    EXPECT_EQ(field({"a", "b"}, -1)->currentIndex(), 0);
    EXPECT_EQ(field({"a", "b"}, 1)->currentIndex(), 1);
    EXPECT_EQ(field({}, 0)->currentIndex(), -1);
}

TEST(ComboBoxInputField, SetCurrentIndexEmitsAndKeepsToTheRange)
{
    auto box = field();
    QSignalSpy changed(box.get(), SIGNAL(currentIndexChanged(int)));
    box->setCurrentIndex(3);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].toInt(), 3);
    box->setCurrentIndex(3);
    EXPECT_EQ(changed.count(), 1);
    for (const int index : {-1, 5, 6, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        box->setCurrentIndex(index);
    EXPECT_EQ(box->currentIndex(), 3);
    EXPECT_EQ(changed.count(), 1);
}

TEST(ComboBoxInputField, SetCurrentTextIsExactAndSilent)
{
    auto box = field();
    QSignalSpy changed(box.get(), SIGNAL(currentIndexChanged(int)));
    box->setCurrentText("screen");
    EXPECT_EQ(box->currentIndex(), 3);
    box->setCurrentText("Screen");
    EXPECT_EQ(box->currentIndex(), 1);
    for (const char* text : {"SCREEN", "Scree", "Screen ", "nothing"}) {
        box->setCurrentText(text);
        EXPECT_EQ(box->currentIndex(), 1) << text;
    }
    EXPECT_EQ(changed.count(), 0);
    box->setCurrentIndex(0);
    EXPECT_EQ(changed.count(), 1) << "the signals are not blocked for good";
}

TEST(ComboBoxInputField, OfTwoEqualTextsTheFirstIsSelected)
{
    auto box = field({"a", "b", "b"});
    box->setCurrentText("b");
    EXPECT_EQ(box->currentIndex(), 1);
}

TEST(ComboBoxInputField, EnablesItemsOfTheListByTheirText)
{
    Shown shown;
    const auto enabled = [&shown](int row) {
        return bool(shown.box->model()->flags(shown.box->model()->index(row, 0)) & Qt::ItemIsEnabled);
    };
    shown.field->setItemEnabled("Screen", false);
    EXPECT_FALSE(enabled(1));
    EXPECT_TRUE(enabled(3));
    shown.field->setItemEnabled("SCREEN", false);
    EXPECT_TRUE(enabled(3));
    shown.field->setItemEnabled("Screen", true);
    EXPECT_TRUE(enabled(1));

    Shown thumbnails({"a", "b"}, 0, ComboBoxInputField::Thumbnails);
    thumbnails.field->setItemEnabled("a", false);
    EXPECT_TRUE(thumbnails.box->model()->flags(thumbnails.box->model()->index(0, 0)) & Qt::ItemIsEnabled);
}

TEST(ComboBoxInputField, TakesTheFocusBackAfterAChoice)
{
    Shown shown;
    QSignalSpy changed(shown.field, SIGNAL(currentIndexChanged(int)));
    auto* other = shown.graph.scene.addRect(0, 0, 10, 10);
    other->setFlag(QGraphicsItem::ItemIsFocusable);
    other->setFocus();
    QGraphicsItem* focusWhileEmitting = nullptr;
    QObject::connect(shown.field, &ComboBoxInputField::currentIndexChanged, shown.field,
                     [&] { focusWhileEmitting = shown.graph.scene.focusItem(); });
    shown.box->setCurrentIndex(4);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(focusWhileEmitting, other) << "the signal comes first";
    EXPECT_EQ(shown.graph.scene.focusItem(), proxyOf(*shown.field));
    EXPECT_TRUE(shown.box->hasFocus());
}

TEST(ComboBoxInputField, NotifiesWithoutAProxyToo)
{
    auto box = field();
    QSignalSpy changed(box.get(), SIGNAL(currentIndexChanged(int)));
    box->notifyCurrentIndexChanged(17);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].toInt(), 17);
}

TEST(ComboBoxInputField, PassesOnThatThumbnailsAreWanted)
{
    Shown shown({"a", "b"}, 0, ComboBoxInputField::Thumbnails);
    std::vector<ComboBoxInputField*> asked;
    QObject::connect(shown.field, &ComboBoxInputField::thumbnailsRequested, shown.field,
                     [&asked](ComboBoxInputField* sender) { asked.push_back(sender); });
    EXPECT_GE(shown.field->metaObject()->indexOfSignal("thumbnailsRequested(ComboBoxInputField*)"), 0);
    shown.box->showPopup();
    EXPECT_EQ(asked, std::vector<ComboBoxInputField*>{shown.field});
    shown.field->comboBoxThumbnailsRequested();
    EXPECT_EQ(asked.size(), 2U);

    QImage picture(20, 10, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    shown.field->setRequestedThumbnail(1, Ondrel::Image(picture).toPtr());
    EXPECT_TRUE(QTest::qWaitFor([&shown] {
        const auto image = shown.box->itemData(1, Qt::DecorationRole).value<QImage>();
        return !image.isNull() && image.pixelColor(91, 91) == QColor(Qt::red);
    }));
    shown.box->hidePopup();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(ComboBoxInputField, HasItsStyleSheetIfThereIsOne)
{
    Shown styled;
    EXPECT_EQ(styled.box->styleSheet(), styleSheet("combobox.css"));
    EXPECT_FALSE(styled.box->styleSheet().isEmpty());
    testing::internal::CaptureStderr();
    {
        const NoDataDirectory nothing;
        Shown plain;
        EXPECT_EQ(plain.box->styleSheet(), QString());
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ComboBoxInputField, OwnsItsBox)
{
    expectNoWidgetLeft([] { return field().release(); });
    expectNoWidgetLeft([] { return field(kChoices, 0, ComboBoxInputField::Thumbnails).release(); });
}

} // namespace
