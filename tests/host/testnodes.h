#pragma once

#include <nodetypes.h>

#include <ondrel/core/platform.h>

#include <QTemporaryDir>

#include <atomic>
#include <functional>
#include <future>
#include <map>

// Small kinds of nodes under "test/", with files in a folder of their own:
//
//   source  makes a picture of 32 x 24 from its slider "shade"
//   add     adds its slider "amount" to every sample of "image"
//   mix     the mean of "a" and "b"
//   slow    works until it is cancelled, or 10 seconds
//   hook    asks `hook` what to add to every sample of "image"
//   fail    reports an error; throw throws an exception
//   flawed  hands "image" on, and reports an error too as long as `hasFlaw`
//   number  has an output of the type "number"
//   photo   has a resource "image"
//   all     a value of every kind
//   twice   has a picture "image" and a number "depth", twice as large as "image", or of its value "width"
//   show    has no output
//   layers  any number of inputs "layer1", "layer2", with an opacity each
class TestNodes : public Host::NodePlugin
{
public:
    TestNodes();
    ~TestNodes() override;
    TestNodes(const TestNodes&) = delete;
    TestNodes& operator=(const TestNodes&) = delete;

    std::vector<Host::NodeEntry> nodes() const override;
    int evaluations() const { return m_counter->load(); } // of all nodes, since the start

    Host::NodeTypes types;
    QStringList problems;
    std::function<unsigned int(const Host::Request&)> hook; // called from several threads at once
    std::atomic<bool> hasFlaw{true};

private:
    QTemporaryDir m_folder;
    std::shared_ptr<std::atomic<int>> m_counter = std::make_shared<std::atomic<int>>(0);
};

// Calls a function that may block, on another thread than the user interface's.
template <class Function>
auto onWorker(Function function)
{
    return std::async(std::launch::async, function).get();
}
