#include "one.h"

// Defined nowhere.
int madeByNobody();
class Missingsymbol : public OneNode
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid)
    Q_INTERFACES(Host::NodePlugin)
public:
    std::vector<Host::NodeEntry> nodes() const override;
};

std::vector<Host::NodeEntry> Missingsymbol::nodes() const
{
    return std::vector<Host::NodeEntry>(std::size_t(madeByNobody()));
}
#include "missingsymbol.moc"
