#include "nodesupport.h"

namespace
{

using namespace OndrelTest;

const QColor kBody(76, 75, 75), kDark(50, 47, 47), kSelection(255, 204, 0), kLight(201, 198, 198);
constexpr QSize kCanvas(260, 140);
constexpr QPointF kOrigin(20, 20);

struct Look {
    QRectF rect{0, 0, 200, 90};
    QString header = "Gaussian Blur";
    bool firstSelected = false;
    bool drawSelection = true;
    bool selected = false;
    bool bold = false;
    bool antialiased = true;
};

// The node as its parts are to be drawn, one after another.
QImage expected(const Look& look)
{
    return painted(
        kCanvas,
        [&](QPainter& painter) {
            painter.setRenderHint(QPainter::Antialiasing, look.antialiased);
            const QRectF& r = look.rect;
            const int headerHeight = QFontMetrics(headerFont()).height() + 12;
            const bool yellow = look.firstSelected && look.drawSelection;
            painter.setPen(Qt::NoPen);
            painter.setBrush(kBody);
            painter.drawRoundedRect(r, 8, 8);
            painter.setFont(headerFont());
            const int x = static_cast<int>(r.x()), y = static_cast<int>(r.y()), width = static_cast<int>(r.width());
            const auto overHeader = [&](const QColor& color, std::initializer_list<double> stops) {
                QLinearGradient gradient(0, r.y(), 0, r.y() + headerHeight);
                for (const double stop : stops)
                    gradient.setColorAt(stop, color);
                return gradient;
            };
            if (yellow) {
                painter.setBrush(kSelection);
            } else {
                painter.setPen(QPen(overHeader(QColor(138, 138, 138, 0), {0.0, 0.36, 1.0}), 1, Qt::SolidLine,
                                    Qt::SquareCap, Qt::BevelJoin));
                painter.setBrush(overHeader(kDark, {0.0, 1.0}));
            }
            painter.drawRoundedRect(x, y, width, headerHeight - 1, 8, 8);
            painter.drawRect(x, static_cast<int>(r.y() + headerHeight * 0.5), width,
                             static_cast<int>(headerHeight * 0.5));
            painter.setPen(yellow ? kDark : kLight);
            painter.drawText(QRectF(r.x() + 6, r.y(), r.width() - 12, headerHeight), Qt::AlignVCenter | Qt::AlignLeft,
                             look.header);
            painter.setPen(QColor(0, 0, 0, 0));
            painter.drawLine(QPointF(r.x(), r.y() + headerHeight), QPointF(r.right(), r.y() + headerHeight));
            if (look.selected && look.drawSelection) {
                painter.setBrush(Qt::NoBrush);
                painter.setPen(QPen(kSelection, 3, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
                painter.drawRoundedRect(r, 8, 8);
            }
        },
        kOrigin);
}

QImage actual(const Look& look, const QRectF& exposed = {-100, -100, 1000, 1000})
{
    TestNode node;
    node.setRect(look.rect);
    node.setHeader(look.header);
    node.setFirstSelected(look.firstSelected);
    node.setDrawSelection(look.drawSelection);
    return painted(
        kCanvas,
        [&](QPainter& painter) {
            painter.setRenderHint(QPainter::Antialiasing, look.antialiased);
            QFont font = painter.font();
            font.setBold(look.bold);
            painter.setFont(font);
            QStyleOptionGraphicsItem option;
            option.exposedRect = exposed;
            option.state = look.selected ? QStyle::State_Selected | QStyle::State_Enabled : QStyle::State_Enabled;
            node.paint(&painter, &option, nullptr);
        },
        kOrigin);
}

void compare(const Look& look)
{
    EXPECT_EQ(actual(look), expected(look)) << "first " << look.firstSelected << " draw " << look.drawSelection
                                            << " selected " << look.selected << " smooth " << look.antialiased;
}

TEST(NodePaint, LooksTheSameInEveryState)
{
    for (int states = 0; states < 32; ++states) {
        Look look;
        if (states & 16)
            look.rect = {0, 0, 187.5, 90.5};
        look.firstSelected = states & 1;
        look.drawSelection = states & 2;
        look.selected = states & 4;
        look.antialiased = states & 8;
        compare(look);
    }
}

TEST(NodePaint, FollowsItsRectangle)
{
    Look look;
    look.rect = {5.75, 3.5, 187.25, 70.5};
    look.antialiased = true;
    compare(look);
    look.firstSelected = look.selected = true;
    compare(look);
}

TEST(NodePaint, HasTheColoursOfItsParts)
{
    Look look;
    look.header.clear();
    const auto at = [](const QImage& image, int x, int y) { return image.pixelColor(QPoint(x, y) + QPoint(20, 20)); };
    QImage image = actual(look);
    EXPECT_EQ(at(image, 100, 80), kBody);
    EXPECT_EQ(at(image, 100, 10), kDark);
    EXPECT_EQ(at(image, 0, 0), QColor(0, 0, 0, 0)) << "the corners are round";
    look.firstSelected = look.selected = true;
    image = actual(look);
    EXPECT_EQ(at(image, 100, 10), kSelection);
    EXPECT_EQ(at(image, 0, 60), kSelection);
    look.drawSelection = false;
    image = actual(look);
    EXPECT_EQ(at(image, 100, 10), kDark);
    EXPECT_EQ(at(image, 0, 60), kBody);
}

TEST(NodePaint, CutsAHeaderThatIsTooLongInsteadOfWrappingIt)
{
    Look look;
    look.header = "A header of many words that does not fit into one row at all";
    compare(look);
}

TEST(NodePaint, TakesOnlyTheFamilyOfThePaintersFont)
{
    Look look;
    const QImage plain = actual(look);
    look.bold = true;
    EXPECT_EQ(actual(look), plain);
}

TEST(NodePaint, StaysInTheExposedRectangle)
{
    const QRectF exposed(30, 10, 50, 40);
    const QImage image = actual({}, exposed), whole = actual({});
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const bool inside = exposed.translated(kOrigin).contains(QPointF(x + 0.5, y + 0.5));
            ASSERT_EQ(image.pixel(x, y), inside ? whole.pixel(x, y) : 0U) << x << "," << y;
        }
}

} // namespace
