#pragma once

#include <QByteArray>

// A project of the kinds in testnodes.h with something in most lists, to be made faulty in one place.
inline QByteArray smallProject()
{
    return R"({"format": "ondrel-project", "version": 1,
 "nodes": [
  {"id": "1", "type": "test/add", "name": "A", "position": ["0", "0"], "bypassed": false, "values": {"amount": "3"}},
  {"id": "2", "type": "test/add", "name": "B", "position": ["0", "0"], "bypassed": false, "values": {}}],
 "connections": [{"from": "1", "output": "image", "to": "2", "input": "image"}],
 "frames": [{"id": "1", "title": "T", "area": ["0", "0", "1", "1"]}],
 "resources": [],
 "view": {}}
)";
}
