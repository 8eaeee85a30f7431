#pragma once

#include <ondrel/nodes/modeinterface.h>
#include <ondrel/nodes/transformseries.h>

#include <gtest/gtest.h>

#include <QPointF>
#include <QSize>
#include <QString>
#include <QTransform>

#include <algorithm>
#include <functional>
#include <vector>

namespace OndrelTest
{

// A mode that leaves every hook as it is.
class Mode : public Ondrel::ModeInterface
{
public:
    using ModeInterface::ModeInterface;

    using ModeInterface::canvas;
    using ModeInterface::canvasItem;
    using ModeInterface::displaySize;
    using ModeInterface::nodeId;
    using ModeInterface::realSize;
    using ModeInterface::scene;
    using ModeInterface::transformSeries;
    using ModeInterface::view;

    QString modeName() const override { return "test"; }

    void setSizes(const QSize& display, const QSize& real)
    {
        canvasGeometryChanged(display, real, Ondrel::TransformSeries());
    }

    bool membersStandInOrder() const
    {
        const std::vector<const void*> members = {&view,        &scene,    &canvasItem, &nodeId,
                                                  &displaySize, &realSize, &canvas,     &transformSeries};
        return std::is_sorted(members.begin(), members.end(), std::less<>());
    }
};

// Qt compares points with a tolerance; here both numbers have to be equal.
inline ::testing::AssertionResult isAt(const QPointF& point, double x, double y)
{
    if (point.x() == x && point.y() == y)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << qPrintable(QString("(%1, %2) instead of (%3, %4)")
                                                           .arg(point.x(), 0, 'g', 17)
                                                           .arg(point.y(), 0, 'g', 17)
                                                           .arg(x, 0, 'g', 17)
                                                           .arg(y, 0, 'g', 17));
}

inline ::testing::AssertionResult isTransform(const QTransform& transform, const QTransform& expected)
{
    if (transform == expected)
        return ::testing::AssertionSuccess();
    auto result = ::testing::AssertionFailure();
    for (const QTransform& t : {transform, expected})
        for (const double entry : {t.m11(), t.m12(), t.m13(), t.m21(), t.m22(), t.m23(), t.m31(), t.m32(), t.m33()})
            result << entry << ' ';
    return result;
}

} // namespace OndrelTest
