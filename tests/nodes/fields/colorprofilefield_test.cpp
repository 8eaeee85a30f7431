#include "fieldsupport.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/nodes/fields/colorprofilefield.h>
#include <ondrel/widgets/listcombobox.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorProfileField;
using Hash = std::array<unsigned char, 32>;
using Profiles = std::vector<std::pair<QString, Hash>>;

Hash hash(unsigned char value)
{
    Hash result;
    result.fill(value);
    return result;
}

QByteArray bytes(const Hash& value)
{
    return QByteArray(reinterpret_cast<const char*>(value.data()), static_cast<int>(value.size()));
}

QByteArray bytes(unsigned char value)
{
    return bytes(hash(value));
}

Profiles threeProfiles()
{
    return {{"Alpha", hash(1)}, {"Beta", hash(2)}, {"Gamma", hash(3)}};
}

Profiles withDefault()
{
    return {{"Alpha", hash(1)}, {"sRGB", Ondrel::DefaultColorProfileHash}, {"Gamma", hash(3)}};
}

TEST(ColorProfileField, StartsEmpty)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    EXPECT_EQ(field.name(), "profile");
    EXPECT_EQ(field.displayName(), "Profile");
    EXPECT_EQ(field.currentIndex(), -1);
    EXPECT_EQ(field.hashValue(), QByteArray());
    EXPECT_TRUE(field.values().empty());
    QGraphicsScene scene;
    auto* shown = new ColorProfileField("profile", nullptr, "Profile", "", {});
    scene.addItem(shown);
    EXPECT_NE(widgetOf<Ondrel::ListComboBox>(*shown), nullptr);
}

TEST(ColorProfileField, ListsProfiles)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    const std::vector<QVariant> names{"Alpha", "Beta", "Gamma"};
    EXPECT_EQ(field.values(), names);
    EXPECT_EQ(field.currentIndex(), 0);
    EXPECT_EQ(field.hashValue(), bytes(1));
    EXPECT_EQ(field.hashValue().size(), 32);
    field.setCurrentIndex(2);
    EXPECT_EQ(field.hashValue(), bytes(3));
}

TEST(ColorProfileField, OffersAnEntryOfItsOwnFirst)
{
    ColorProfileField field("profile", nullptr, "Profile", "Same as input", "made up");
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    const std::vector<QVariant> names{"Same as input", "Alpha", "Beta", "Gamma"};
    EXPECT_EQ(field.values(), names);
    EXPECT_EQ(field.hashValue(), "made up");
    field.setCurrentIndex(3);
    EXPECT_EQ(field.hashValue(), bytes(3));

    ColorProfileField unnamed("profile", nullptr, "Profile", "", "made up");
    unnamed.updateColorProfiles(profiles);
    EXPECT_EQ(unnamed.hashValue(), bytes(1)) << "without a name there is no entry";
}

TEST(ColorProfileField, KeepsItsProfileInSilenceWhenTheListChanges)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    field.setCurrentIndex(1);
    QSignalSpy changed(&field, SIGNAL(currentIndexChanged(int)));
    Profiles more{{"Aardvark", hash(9)}, {"Alpha", hash(1)}, {"Another", hash(8)}, {"Beta", hash(2)}};
    field.updateColorProfiles(more);
    EXPECT_EQ(field.currentIndex(), 3);
    EXPECT_EQ(field.hashValue(), bytes(2));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_FALSE(field.signalsBlocked());
    field.setCurrentIndex(0);
    EXPECT_EQ(changed.count(), 1);
}

TEST(ColorProfileField, TakesTheFocusWhenTheListChangesThoughItRaisesNothing)
{
    GraphView graph;
    auto* field = graph.add(new ColorProfileField("profile", nullptr, "Profile", "", {}), {50, 50});
    Profiles profiles = threeProfiles();
    field->updateColorProfiles(profiles);
    field->setCurrentIndex(1);
    graph.scene.clearFocus();
    field->updateColorProfiles(profiles);
    EXPECT_EQ(field->currentIndex(), 1);
    EXPECT_EQ(graph.scene.focusItem(), proxyOf(*field));
}

TEST(ColorProfileField, FallsBackToTheDefaultProfile)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = withDefault();
    field.updateColorProfiles(profiles);
    EXPECT_EQ(field.currentIndex(), 1) << "no profile was chosen before";
    for (const QByteArray& unknown : {bytes(77), QByteArray(), QByteArray("short"), bytes(1).left(31)}) {
        field.setCurrentIndex(2);
        field.setValueByHash(unknown);
        EXPECT_EQ(field.hashValue(), bytes(Ondrel::DefaultColorProfileHash));
    }
    field.setValueByHash(bytes(3));
    EXPECT_EQ(field.currentIndex(), 2);
    Profiles gone = withDefault();
    gone.pop_back();
    field.updateColorProfiles(gone);
    EXPECT_EQ(field.currentIndex(), 1) << "its profile is no longer there";
}

TEST(ColorProfileField, FallsBackToItsOwnEntryBeforeTheDefault)
{
    ColorProfileField field("profile", nullptr, "Profile", "Own", "made up");
    Profiles profiles = withDefault();
    field.updateColorProfiles(profiles);
    field.setCurrentIndex(3);
    field.setValueByHash(bytes(77));
    EXPECT_EQ(field.currentIndex(), 0);
}

TEST(ColorProfileField, StaysWhereItIsWithoutAFallback)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    field.setCurrentIndex(2);
    field.setValueByHash(bytes(77));
    EXPECT_EQ(field.currentIndex(), 2);
}

TEST(ColorProfileField, SetValueByHashEmitsOnAChange)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    QSignalSpy changed(&field, SIGNAL(currentIndexChanged(int)));
    field.setValueByHash(bytes(2));
    EXPECT_EQ(changed.count(), 1);
    field.setValueByHash(bytes(2));
    EXPECT_EQ(changed.count(), 1);
}

TEST(ColorProfileField, HasNoHashForItemsThatAreNoProfiles)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    field.setChoices({"a", "b", "c", "d"});
    field.setCurrentIndex(3);
    EXPECT_EQ(field.hashValue(), QByteArray());
    field.setChoices({});
    EXPECT_EQ(field.hashValue(), QByteArray());
}

TEST(ColorProfileField, TakesAnEmptyList)
{
    ColorProfileField field("profile", nullptr, "Profile", "", {});
    Profiles profiles = threeProfiles();
    field.updateColorProfiles(profiles);
    Profiles none;
    field.updateColorProfiles(none);
    EXPECT_EQ(field.currentIndex(), -1);
    EXPECT_EQ(field.hashValue(), QByteArray());
}

} // namespace
