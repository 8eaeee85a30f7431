#include "one.h"

class Badnode : public OneNode
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid)
    Q_INTERFACES(Host::NodePlugin)
public:
};

#include "badnode.moc"
