#include "one.h"

#include <stdexcept>

class Throwing : public OneNode
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid)
    Q_INTERFACES(Host::NodePlugin)
public:
    Throwing() { throw std::runtime_error("no licence"); }
};

#include "throwing.moc"
