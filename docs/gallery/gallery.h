#pragma once

#include <ondrel/core/image.h>

#include <QString>

#include <functional>
#include <vector>

// What the pictures are made from.
struct Inputs {
    Ondrel::Image photo;      // 600 pixels wide
    Ondrel::Image chart;      // kChartWidth x kChartHeight: patches, lines, a ring, an edge to nothing
    Ondrel::Image smallChart; // its top left corner, to be shown enlarged
};

struct Picture {
    QString call;   // what a caller writes, with its parameters
    QString remark; // what to look at
    std::function<Ondrel::Image(const Inputs&)> make;
};

struct Section {
    QString title;
    std::vector<Picture> pictures;
};

constexpr unsigned int kChartWidth = 300, kChartHeight = 200;

Ondrel::Image paintChart();

// Pixels as squares of `factor` pixels, so that they can be counted.
Ondrel::Image magnified(const Ondrel::Image& image, unsigned int factor);

std::vector<Section> scaling();
std::vector<Section> geometry();
std::vector<Section> blurring();
std::vector<Section> warping();
std::vector<Section> gradients();
std::vector<Section> painting();
std::vector<Section> colour();
