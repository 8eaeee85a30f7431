#include "one.h"

#include <chrono>
#include <thread>

// A plug-in with a node that gives a picture, one that gives a picture and reports an error too, one that takes its
// time over a picture, and an output.
class Flawed : public QObject, public Host::NodePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid)
    Q_INTERFACES(Host::NodePlugin)
public:
    std::vector<Host::NodeEntry> nodes() const override
    {
        return {entry("Plain", std::make_shared<Source>(QString())),
                entry("Flawed", std::make_shared<Source>("It is only half right.")),
                entry("Slow", std::make_shared<Slow>()), entry("Output", std::make_shared<OneNode::Behaviour>())};
    }

private:
    class Source : public Host::NodeBehaviour
    {
    public:
        explicit Source(const QString& error)
            : m_error(error)
        {
        }

        Host::Result evaluate(const Host::Request&) const override
        {
            const auto image = std::make_shared<Ondrel::Image>(4, 3);
            image->Fill(1000, 2000, 3000, 65535);
            return {{{"image", {image, QSize(4, 3)}}}, m_error};
        }

    private:
        const QString m_error;
    };

    class Slow : public Host::NodeBehaviour
    {
    public:
        Host::Result evaluate(const Host::Request& request) const override
        {
            const int milliseconds = request.values.value("milliseconds").toString().toInt();
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            return {request.inputs, QString()};
        }
    };

    static Host::NodeEntry entry(const char* name, std::shared_ptr<const Host::NodeBehaviour> behaviour)
    {
        Host::NodeEntry entry;
        entry.nodeName = name;
        entry.behaviour = std::move(behaviour);
        return entry;
    }
};

#include "flawed.moc"
