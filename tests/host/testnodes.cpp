#include "testnodes.h"

#include <QDir>
#include <QFile>

#include <chrono>
#include <stdexcept>
#include <thread>

using Host::Picture;
using Host::Request;
using Host::Result;
using Ondrel::Image;

namespace
{

const std::map<QString, QString> kFiles = {
    {"source", "<node title=\"Source\"><input><field name=\"shade\" type=\"slider\" value=\"50\"/></input>"
               "<output><field name=\"image\">Image</field></output></node>"},
    {"add", "<node title=\"Add\"><input><field name=\"image\">Image</field>"
            "<field name=\"amount\" type=\"slider\" value=\"1\">Amount</field></input>"
            "<output><field name=\"image\">Image</field></output></node>"},
    {"mix", "<node title=\"Mix\"><input><field name=\"a\">A</field><field name=\"b\">B</field></input>"
            "<output><field name=\"image\">Image</field></output></node>"},
    {"slow", "<node title=\"Slow\"><input><field name=\"image\">Image</field></input>"
             "<output><field name=\"image\">Image</field></output></node>"},
    {"hook", "<node title=\"Hook\"><input><field name=\"image\">Image</field>"
             "<field name=\"amount\" type=\"slider\" value=\"1\">Amount</field></input>"
             "<output><field name=\"image\">Image</field></output></node>"},
    {"fail", "<node title=\"Fail\"><input><field name=\"image\">Image</field></input>"
             "<output><field name=\"image\">Image</field></output></node>"},
    {"flawed", "<node title=\"Flawed\"><input><field name=\"image\">Image</field></input>"
               "<output><field name=\"image\">Image</field></output></node>"},
    {"throw", "<node title=\"Throw\"><input><field name=\"image\">Image</field></input>"
              "<output><field name=\"image\">Image</field></output></node>"},
    {"number", "<node title=\"Number\"><input/><output><field name=\"number\">Number</field></output></node>"},
    {"photo", "<node title=\"Photo\"><input><field name=\"image\" type=\"resource\"/></input>"
              "<output><field name=\"image\">Image</field></output></node>"},
    {"all", "<node title=\"All\"><input><field name=\"image\">Image</field>"
            "<field name=\"slider\" type=\"slider\" min=\"0\" max=\"10\" value=\"5\"/>"
            "<field name=\"range\" type=\"rangeslider\" left=\"2\" right=\"8\"/>"
            "<field name=\"combo\" type=\"combobox\" choices=\"one,--,two\"/>"
            "<field name=\"color\" type=\"color\" value=\"1,2,3,4\"/>"
            "<field name=\"profile\" type=\"colorprofile\"/><field name=\"resource\" type=\"resource\"/>"
            "<field name=\"hidden\" type=\"hidden\"/></input>"
            "<output><field name=\"image\">Image</field></output></node>"},
    {"twice", "<node title=\"Twice\"><input><field name=\"image\">Image</field>"
              "<field name=\"width\" type=\"slider\" value=\"4\"/></input>"
              "<output><field name=\"image\">Image</field><field name=\"depth\">Depth</field></output></node>"},
    {"show", "<node title=\"Show\"><input><field name=\"image\">Image</field></input><output/></node>"},
    {"layers", "<node title=\"Layers\"><input/><output><field name=\"image\">Image</field></output></node>"},
};

using Work = std::function<Result(const Request& request)>;

class Behaviour : public Host::NodeBehaviour
{
public:
    Behaviour(Work work, std::shared_ptr<std::atomic<int>> counter)
        : m_work(std::move(work))
        , m_counter(std::move(counter))
    {
    }

    Result evaluate(const Request& request) const override
    {
        ++*m_counter;
        return m_work(request);
    }

private:
    Work m_work;
    std::shared_ptr<std::atomic<int>> m_counter;
};

// What comes out of it is twice as large as what goes in.
class Twice : public Behaviour
{
public:
    using Behaviour::Behaviour;

    QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>& inputs) const override
    {
        const int width = values.value("width").toString().toInt();
        const QSize size = inputs.contains("image") ? inputs.value("image") * 2 : QSize(width, width);
        return {{"image", size}, {"depth", size}};
    }
};

template <class Function>
Result picture(Function sample)
{
    const auto image = std::make_shared<Image>(32, 24);
    for (unsigned int i = 0; i < image->width * image->height * 4; ++i)
        image->data[i] = static_cast<unsigned short>(sample(i));
    return {{{"image", Picture{image, QSize(32, 24)}}}, QString()};
}

unsigned int sampleOf(const Request& request, const char* input, unsigned int i)
{
    const Picture picture = request.inputs.value(input);
    return picture.image ? picture.image->data[i] : 0;
}

Result source(const Request& request)
{
    const auto shade = request.values.value("shade").toString().toUInt();
    return picture([shade](unsigned int i) { return shade * 256 + i % 97; });
}

Result add(const Request& request)
{
    const auto amount = request.values.value("amount").toString().toUInt();
    return picture([&](unsigned int i) { return sampleOf(request, "image", i) + amount; });
}

Result mix(const Request& request)
{
    return picture([&](unsigned int i) { return (sampleOf(request, "a", i) + sampleOf(request, "b", i)) / 2; });
}

Result slow(const Request& request)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (*const_cast<const volatile int*>(request.status.state) != 1 && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return {request.inputs, QString()};
}

Result fail(const Request&)
{
    return {{}, "It did not go well."};
}

Result throwing(const Request&)
{
    throw std::runtime_error("out of paper");
}

Result nothing(const Request&)
{
    return {};
}

Result layers(const Request& request)
{
    return picture([&](unsigned int i) {
        unsigned int sum = 0;
        for (const QString& id : request.values.value("layer_order").toString().split(',', Qt::SkipEmptyParts))
            sum = sum * 3 + sampleOf(request, ("layer" + id).toLatin1(), i);
        return sum;
    });
}

} // namespace

TestNodes::TestNodes()
{
    QDir(m_folder.path()).mkdir("nodes");
    for (const auto& [name, text] : kFiles) {
        QFile file(m_folder.filePath("nodes/" + name + ".xml"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
            throw std::runtime_error("no room for node files");
    }
    types.addPlugin("test", m_folder.path(), *this, problems);
}

TestNodes::~TestNodes()
{
    PlatformPrivate::get()->removePluginDirectory("test");
}

std::vector<Host::NodeEntry> TestNodes::nodes() const
{
    const auto hooked = [this](const Request& request) {
        const unsigned int amount = hook(request);
        return picture([&](unsigned int i) { return sampleOf(request, "image", i) + amount; });
    };
    const auto flawed = [this](const Request& request) -> Result {
        return {request.inputs, hasFlaw ? "It is only half right." : QString()};
    };
    const std::pair<const char*, Work> works[] = {
        {"Source", source},  {"Add", add},        {"Mix", mix},       {"Slow", slow},   {"Fail", fail},
        {"Throw", throwing}, {"Number", nothing}, {"Photo", nothing}, {"All", nothing}, {"Hook", hooked},
        {"Flawed", flawed},  {"Show", nothing},   {"Layers", layers}};
    std::vector<Host::NodeEntry> entries;
    for (const auto& [name, work] : works) {
        Host::NodeEntry entry;
        entry.nodeName = name;
        entry.behaviour = std::make_shared<Behaviour>(work, m_counter);
        entries.push_back(entry);
    }
    entries[6].dataTypes["number"] = "number";
    Host::NodeEntry twice;
    twice.nodeName = "Twice";
    twice.behaviour = std::make_shared<Twice>(nothing, m_counter);
    twice.dataTypes["depth"] = "number";
    entries.insert(entries.begin(), twice);
    Host::NodeEntry& variable = entries.back();
    variable.variablePrefix = "layer";
    variable.variableInput.dataType = "image";
    Host::InputInfo opacity;
    opacity.name = "opacity";
    opacity.kind = "slider";
    opacity.initial = "100";
    variable.variableChildren = {opacity};
    return entries;
}
