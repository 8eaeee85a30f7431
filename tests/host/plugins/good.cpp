#include "one.h"

class Good : public OneNode
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid)
    Q_INTERFACES(Host::NodePlugin)
public:
};

#include "good.moc"
