#include "nodesupport.h"

#include <ondrel/color/colortransformer.h>
#include <ondrel/nodes/nodebackdrop.h>
#include <ondrel/pixel/gaussianblur.h>

namespace
{

using namespace OndrelTest;

// The blurred square from which the shadow is cut.
QImage shadowSource()
{
    QImage square(52, 52, QImage::Format_ARGB32);
    square.fill(0);
    QPainter painter(&square);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(17, 17, 18, 18, 8, 8);
    painter.end();
    return Ondrel::ColorTransformer::toQImage(
        GaussianBlur_CPU(Ondrel::Image(square), 17, 17, GaussianEdge::Blank, Ondrel::RunStatus()), true);
}

// The nine draws at a size of whole numbers.
QImage expectedShadow(const QSize& canvas, const QRect& r)
{
    const QImage source = shadowSource();
    const int w = source.width(), h = source.height();
    const QImage left = source.copy(0, h / 2, 25, 1), right = source.copy(w - 25, h / 2, 25, 1);
    const QImage top = source.copy(w / 2, 0, 1, 25), bottom = source.copy(w / 2, h - 25, 1, 25);
    const auto stretched = [](const QImage& image, int width, int height) {
        return image.scaled(width, height, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    };
    return painted(canvas, [&](QPainter& painter) {
        painter.translate(r.topLeft());
        painter.drawImage(0, 0, source.copy(0, 0, 25, 25));
        painter.drawImage(r.width() - 25, 0, source.copy(w - 25, 0, 25, 25));
        painter.drawImage(0, r.height() - 25, source.copy(0, h - 25, 25, 25));
        painter.drawImage(r.width() - 25, r.height() - 25, source.copy(w - 25, h - 25, 25, 25));
        painter.drawImage(0, 25, stretched(left, 25, r.height() - 50));
        painter.drawImage(25, 0, stretched(top, r.width() - 50, 25));
        painter.drawImage(r.width() - 25, 25, stretched(right, 25, r.height() - 50));
        painter.drawImage(25, r.height() - 25, stretched(bottom, r.width() - 50, 25));
    });
}

TEST(NodeBackdrop, IsAnItemOfItsOwnType)
{
    QGraphicsRectItem parent;
    auto* backdrop = new NodeBackdrop(&parent);
    EXPECT_EQ(backdrop->type(), 65539);
    EXPECT_EQ(backdrop->parentItem(), &parent);
    EXPECT_EQ(static_cast<void*>(backdrop), static_cast<void*>(static_cast<QObject*>(backdrop)));
}

TEST(NodeBackdrop, ReachesSeventeenBeyondItsTargetOnAllSides)
{
    NodeBackdrop backdrop(nullptr);
    backdrop.setTargetRect({10, 21, 200, 80});
    EXPECT_EQ(backdrop.rect(), QRectF(-7, 4, 234, 114));
    // A difference that the toolkit's fuzzy comparison does not see is no change.
    const QRectF before = backdrop.rect();
    backdrop.setTargetRect({10, 21, 200 + 1e-11, 80});
    EXPECT_EQ(backdrop.rect().width() - before.width(), 0);
    backdrop.setTargetRect({10, 21, 200.001, 80});
    EXPECT_DOUBLE_EQ(backdrop.rect().width(), 234.001);
    backdrop.setTargetRect({11, 21, 200.001, 80});
    EXPECT_DOUBLE_EQ(backdrop.rect().x(), -6);
    backdrop.setTargetRect({11, 22, 200.001, 80});
    EXPECT_DOUBLE_EQ(backdrop.rect().y(), 5);
    backdrop.setTargetRect({11, 22, 200.001, 81});
    EXPECT_DOUBLE_EQ(backdrop.rect().height(), 115);
}

TEST(NodeBackdrop, IsDrawnInNinePieces)
{
    NodeBackdrop backdrop(nullptr);
    for (const QRect& target : {QRect(30, 30, 200, 90), QRect(20, 40, 237, 21), QRect(40, 30, 17, 17)}) {
        backdrop.setTargetRect(target);
        const QRect whole = target.adjusted(-17, -17, 17, 17);
        const QImage expected = expectedShadow({300, 160}, whole);
        EXPECT_EQ(paintedItem(backdrop, {300, 160}), expected) << target.width() << "x" << target.height();
    }
}

TEST(NodeBackdrop, IsDarkBesideTheNodeAndFadesOut)
{
    NodeBackdrop backdrop(nullptr);
    backdrop.setTargetRect({30, 30, 200, 90});
    const QImage image = paintedItem(backdrop, {300, 160});
    const auto alpha = [&image](int x, int y) { return qAlpha(image.pixel(x, y)); };
    EXPECT_GT(alpha(130, 119), alpha(130, 125));
    EXPECT_GT(alpha(130, 125), alpha(130, 132));
    EXPECT_GT(alpha(130, 119), 40);
    EXPECT_EQ(alpha(130, 75), 0) << "the middle stays empty";
    EXPECT_EQ(alpha(5, 5), 0);
    EXPECT_EQ(image.pixelColor(130, 119).red(), 0);
}

TEST(NodeBackdrop, NodesShareOneShadow)
{
    NodeBackdrop first(nullptr), second(nullptr);
    first.setTargetRect({30, 30, 200, 90});
    second.setTargetRect({30, 30, 200, 90});
    EXPECT_EQ(paintedItem(first, {300, 160}), paintedItem(second, {300, 160}));
}

TEST(NodeBackdrop, DoesNotBreakOnTinyRectangles)
{
    NodeBackdrop backdrop(nullptr);
    for (const QRectF& target : {QRectF(0, 0, 0, 0), QRectF(0, 0, -100, -100), QRectF(5, 5, 1, 500)}) {
        backdrop.setTargetRect(target);
        paintedItem(backdrop, {100, 100});
    }
}

} // namespace
