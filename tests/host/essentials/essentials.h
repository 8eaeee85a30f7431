#pragma once

#include "../../support/testimages.h"

#include "../../../examples/host/nodetypes.h"

#include <gtest/gtest.h>

#include <memory>

// The nodes of the essentials plug-in, loaded from its shared object as a host does.
namespace OndrelTest
{

using Inputs = QHash<QString, Host::Picture>;
using Sizes = QHash<QString, QSize>;

const Host::NodeTypes& essentials();

// The type of a node by the name of its file.
const Host::NodeType& nodeType(const QString& file);

// One evaluation; values that are not given have their defaults.
Host::Result evaluate(const QString& file, const Inputs& inputs, const QVariantMap& values, double scale = 1,
                      const Ondrel::RunStatus& status = {});

Sizes sizesOf(const QString& file, const QVariantMap& values, const Sizes& inputs);
std::vector<Ondrel::TransformMap> mapsOf(const QString& file, const QVariantMap& values, const Sizes& inputs);

// The image as an input named "image"; fullSize is its own, or as given for a preview.
Inputs inputOf(const Ondrel::Image& image, const QSize& fullSize = QSize());

// Random, in the default profile.
Ondrel::Image picture(unsigned int width, unsigned int height, unsigned int seed = 1);

// Without noise: slow waves, opaque, in the default profile.
Ondrel::Image smoothPicture(unsigned int width, unsigned int height);

// The picture of an output, with an assertion that it is there without an error.
Ondrel::Image imageOf(const Host::Result& result, const QString& output = "image");

// Equal pixels and profile.
testing::AssertionResult same(const Ondrel::Image& expected, const Ondrel::Image& actual);

// The mean difference of all samples of two images of one size; 65535 for others.
double meanDifference(const Ondrel::Image& a, const Ondrel::Image& b);

} // namespace OndrelTest
