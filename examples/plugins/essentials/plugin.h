#pragma once

#include "../../host/plugininterface.h"

#include <QObject>

namespace Essentials
{

class Plugin : public QObject, public Host::NodePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid)
    Q_INTERFACES(Host::NodePlugin)
public:
    std::vector<Host::NodeEntry> nodes() const override;
};

} // namespace Essentials
