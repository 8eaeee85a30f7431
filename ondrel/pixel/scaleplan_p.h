#pragma once

#include <cstdint>
#include <ondrel/pixel/scalesamplers_p.h>
#include <vector>

// Which samples a scaled picture is made of. The quartering of a box treats both axes alike and each by itself, so the
// samples of an output pixel are a grid: positions that belong to its column, times positions that belong to its row.

namespace Ondrel
{

// Grids of this depth have 2^depth positions on either axis; 0 is one sample at the middle.
constexpr int kIrregular = -1;

// Further quarterings that one side of a box asks for; kIrregular if, by rounding, they end earlier in one half.
template <typename Boxes>
int quarteringsOf(Span span)
{
    if (!splitsAgain<Boxes>(span))
        return 1;
    const int first = quarteringsOf<Boxes>(childOf<Boxes>(span, 0));
    const int second = quarteringsOf<Boxes>(childOf<Boxes>(span, 1));
    return first == second && first != kIrregular ? first + 1 : kIrregular;
}

template <typename Boxes>
int depthOfOutput(std::uint32_t position, float step)
{
    const Span span = spanOfOutput<Boxes>(position, step);
    return isWide<Boxes>(span) ? quarteringsOf<Boxes>(span) : 0;
}

// Calls found(index, position) for the 2^depth points of one side of a box, from low to high index; `depth` is at
// least 1.
template <typename Boxes, typename Found>
void forEachPoint(Span span, int depth, std::size_t firstIndex, Found const& found)
{
    for (int half = 0; half < 2; ++half) {
        const std::size_t index = 2 * firstIndex + std::size_t(half);
        if (depth == 1)
            found(index, pointOf<Boxes>(span, half));
        else
            forEachPoint<Boxes>(childOf<Boxes>(span, half), depth - 1, index, found);
    }
}

// Output columns or rows whose grids have the same depth.
struct DepthGroup {
    int depth;
    std::vector<std::uint32_t> members;
};

struct AxisPlan {
    std::vector<int> depths;        // of every output position
    std::vector<DepthGroup> groups; // the regular ones
    std::vector<std::uint32_t> irregular;
    int deepest = 0;
};

template <typename Boxes>
AxisPlan planAxis(std::uint32_t count, float step)
{
    AxisPlan plan;
    plan.depths.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const int depth = depthOfOutput<Boxes>(i, step);
        plan.depths.push_back(depth);
        if (depth == kIrregular) {
            plan.irregular.push_back(i);
            continue;
        }
        plan.deepest = depth > plan.deepest ? depth : plan.deepest;
        DepthGroup* group = nullptr;
        for (DepthGroup& known : plan.groups)
            group = known.depth == depth ? &known : group;
        if (!group)
            group = &plan.groups.emplace_back(DepthGroup{depth, {}});
        group->members.push_back(i);
    }
    return plan;
}

} // namespace Ondrel
