// What the editor computes in the background, with everything at once that a user may do meanwhile.

#include "evaluator.h"
#include "exporter.h"
#include "gate.h"
#include "testnodes.h"
#include "worker.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <map>
#include <memory>
#include <random>
#include <vector>

using namespace Host;

namespace
{

constexpr int kPatience = 60000; // milliseconds
constexpr unsigned int kShade = 50 * 256;
constexpr unsigned int kUnmanaged = 3000;

// A node hangs on this, as a soft proof does on the display.
unsigned int displayAmount()
{
    return Ondrel::ColorManager::isColorManagementEnabled() ? 0 : kUnmanaged;
}

class Background : public testing::Test
{
protected:
    Background()
    {
        const char* const types[] = {"source", "hook", "add"};
        for (NodeId id = 1; id <= 3; ++id) {
            NodeRecord record;
            record.id = id;
            record.type = QString("test/") + types[id - 1];
            record.name = QString::number(id);
            graph.nodes[id] = record;
        }
        graph.connections = {{1, "image", 2, "image"}, {2, "image", 3, "image"}};
        nodes.hook = [](const Request& request) {
            return request.values.value("amount").toString().toUInt() + displayAmount();
        };
    }
    ~Background() override
    {
        QSettings().remove("settings");
        Ondrel::ColorManager::reload();
    }

    void edit(unsigned int amount) { graph.nodes[2].values["amount"] = QString::number(amount); }

    void request() { evaluator.request(graph, {{0, {3, QString(), 0.5}, true}, {1, {1, QString(), 1}, false}}); }

    void exportAs(unsigned int number)
    {
        const QString file = folder.filePath(QString::number(number) + ".png");
        exporter.add({graph, 3, file, FileFormat::Png, {{"pngdepth", "16 bits"}}});
    }

    // As the preferences do it.
    void changeDisplay(bool managed)
    {
        evaluator.cancel();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !evaluator.isBusy(); }, kPatience));
        QSettings().setValue("settings/colormanagement/colormanagement", managed ? "Enabled" : "Disabled");
        evaluator.cache().beginGeneration([] { Ondrel::ColorManager::reload(); });
    }

    TestNodes nodes;
    QTemporaryDir folder;
    Graph graph;
    Evaluator evaluator{nodes.types, std::size_t(1) << 20};
    Exporter exporter{nodes.types, evaluator.cache(), nullptr};
};

} // namespace

TEST_F(Background, KeepsItsResultsApartWhateverComesInBetween)
{
    qRegisterMetaType<Host::Picture>("Host::Picture");
    QSignalSpy exported(&exporter, &Exporter::finished);
    QSignalSpy pictures(&evaluator, &Evaluator::pictureReady);
    std::mt19937 random(3);
    std::map<QString, unsigned int> amounts;
    for (unsigned int round = 0; round < 150; ++round) {
        edit(round * 20);
        request();
        if (random() % 3 == 0) {
            exportAs(round);
            amounts[folder.filePath(QString::number(round) + ".png")] = round * 20;
        }
        if (random() % 7 == 0)
            exporter.cancel();
        if (random() % 5 == 0)
            evaluator.cancel();
        if (random() % 9 == 0)
            changeDisplay(random() % 2 == 0);
        if (random() % 2 == 0)
            QCoreApplication::processEvents();
    }
    request();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !evaluator.isBusy() && !exporter.isBusy(); }, kPatience));
    ASSERT_EQ(std::size_t(exported.count()), amounts.size());
    int written = 0;
    for (const QList<QVariant>& signal : exported) {
        Ondrel::Image image;
        if (!signal[1].toString().isEmpty() || !ResourceEngine::ImportPNG(signal[0].toString(), image))
            continue; // cancelled
        ++written;
        const unsigned int sample = image.data[0] - kShade - 1 - amounts.at(signal[0].toString());
        EXPECT_TRUE(sample == 0 || sample == kUnmanaged) << sample;
    }
    EXPECT_GT(written, int(amounts.size()) / 4);
    ASSERT_FALSE(pictures.isEmpty());
    const Picture last = pictures.last()[1].value<Picture>();
    ASSERT_TRUE(last.image);
    EXPECT_EQ(last.image->data[0], kShade + 1 + 149 * 20 + displayAmount());
}

// The end of the window, wherever its work is.
TEST_F(Background, ComesToAnEndWithItsOwner)
{
    for (unsigned int round = 0; round < 30; ++round) {
        Evaluator own(nodes.types, std::size_t(1) << 20);
        Exporter ownExporter(nodes.types, own.cache(), nullptr);
        edit(round);
        own.request(graph, {{0, {3, QString(), 0.5}, true}});
        ownExporter.add({graph, 3, folder.filePath("end.png"), FileFormat::Png, {}});
        if (round % 3 == 0)
            QCoreApplication::processEvents();
    }
    EXPECT_FALSE(QFile::exists(folder.filePath(".end.png.part")));
}

TEST(BackgroundWorker, OneThreadKeepsTheOrder)
{
    Worker worker;
    std::vector<int> begun, ended, expected;
    for (int i = 0; i < 200; ++i) {
        expected.push_back(i);
        worker.run([&begun, &ended, i]() -> std::function<void()> {
            begun.push_back(i);
            return [&ended, i] { ended.push_back(i); };
        });
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return !worker.isBusy(); }, kPatience));
    EXPECT_EQ(begun, expected);
    EXPECT_EQ(ended, expected);
}

TEST(BackgroundWorker, DoesNotWaitForAnother)
{
    Gate gate;
    Worker held, free;
    held.run([&gate]() -> std::function<void()> {
        gate.pass();
        return {};
    });
    bool ended = false;
    free.run([&ended]() -> std::function<void()> { return [&ended] { ended = true; }; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended; }, kPatience));
    EXPECT_TRUE(held.isBusy());
    gate.open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !held.isBusy(); }, kPatience));
}

TEST(BackgroundWorker, MoreThreadsWorkBesideEachOther)
{
    Gate gate;
    Worker worker(2);
    worker.run([&gate]() -> std::function<void()> {
        gate.pass();
        return {};
    });
    worker.run([&gate]() -> std::function<void()> {
        gate.open();
        return {};
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !worker.isBusy(); }, kPatience));
}

TEST(BackgroundWorker, HoldsNothingOnceItHasTold)
{
    Worker worker;
    for (int i = 0; i < 100; ++i) {
        auto atWork = std::make_shared<int>(), told = std::make_shared<int>(), otherwise = std::make_shared<int>();
        const std::weak_ptr<int> held[] = {atWork, told, otherwise};
        bool ended = false;
        worker.run(
            [atWork = std::move(atWork), told = std::move(told), &ended, &held]() -> std::function<void()> {
                return [told, &ended, &held] {
                    EXPECT_TRUE(held[0].expired());
                    EXPECT_TRUE(held[2].expired());
                    ended = true;
                };
            },
            [otherwise = std::move(otherwise)](const QString&) {});
        ASSERT_TRUE(QTest::qWaitFor([&] { return ended; }, kPatience));
        EXPECT_TRUE(held[1].expired());
    }
}
