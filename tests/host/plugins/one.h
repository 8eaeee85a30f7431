#pragma once

#include <plugininterface.h>

#include <QObject>

// A plug-in with one node, which hands its picture through.
class OneNode : public QObject, public Host::NodePlugin
{
public:
    class Behaviour : public Host::NodeBehaviour
    {
    public:
        Host::Result evaluate(const Host::Request& request) const override { return {request.inputs, QString()}; }
    };

    std::vector<Host::NodeEntry> nodes() const override
    {
        Host::NodeEntry entry;
        entry.nodeName = "Through";
        entry.behaviour = std::make_shared<Behaviour>();
        return {entry};
    }
};
