#include "nodesupport.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/layouts.h>

#include <map>
#include <memory>
#include <random>
#include <tuple>

namespace
{

using namespace OndrelTest;
using Ondrel::Anchor;
using Ondrel::FieldBase;
using Ondrel::GridLayout;
using Ondrel::InputField;
using Ondrel::OutputField;

// Reports a made-up size and keeps what it is told.
struct InnerLayout final : Ondrel::Layout {
    InnerLayout(double width, double height)
        : size(width, height)
    {
    }
    QSizeF calculateSize(float* outputLabelWidth, float* inputLabelWidth) override
    {
        EXPECT_EQ(outputLabelWidth, nullptr);
        EXPECT_EQ(inputLabelWidth, nullptr);
        return size;
    }
    void layout(float width, float outputLabelWidth, float inputLabelWidth, float y) override
    {
        calls.emplace_back(width, outputLabelWidth, inputLabelWidth, y);
    }
    QSizeF size;
    std::vector<std::tuple<float, float, float, float>> calls;
};

// A grid, its fields, and what it measures.
class Grid : public testing::Test
{
protected:
    SizedInput* input(unsigned int row, unsigned int column, float width, float height, unsigned int rowSpan = 1,
                      unsigned int columnSpan = 1, float label = 0, bool anchored = false)
    {
        auto* field =
            new SizedInput(&parent, anchored ? new Anchor(nullptr, Anchor::Input) : nullptr, width, height, label);
        grid.addInputField(field, row, column, rowSpan, columnSpan);
        return field;
    }
    SizedOutput* output(unsigned int row, unsigned int column, float width, float height, unsigned int rowSpan = 1,
                        unsigned int columnSpan = 1, float label = 0, bool anchored = false)
    {
        auto* field =
            new SizedOutput(&parent, anchored ? new Anchor(nullptr, Anchor::Output) : nullptr, width, height, label);
        grid.addOutputField(field, row, column, rowSpan, columnSpan);
        return field;
    }
    QSizeF measure() { return grid.calculateSize(&outputLabel, &inputLabel); }

    QGraphicsRectItem parent;
    GridLayout grid;
    float outputLabel = -1, inputLabel = -1;
};

TEST_F(Grid, EmptyMeasuresNothing)
{
    EXPECT_EQ(measure(), QSizeF(0, 0));
    EXPECT_EQ(outputLabel, 0);
    EXPECT_EQ(inputLabel, 0);
    EXPECT_EQ(grid.calculateSize(nullptr, nullptr), QSizeF(0, 0));
    grid.layout(300, 0, 0, 0);
}

TEST_F(Grid, CellTypesHaveTheirNumbers)
{
    EXPECT_EQ(GridLayout::InputCell, 0);
    EXPECT_EQ(GridLayout::OutputCell, 1);
    EXPECT_EQ(GridLayout::LayoutCell, 2);
    EXPECT_EQ(GridLayout::EmptyCell, 3);
    EXPECT_EQ(GridLayout::SpannedCell, 4);
}

TEST_F(Grid, TheStretchColumnTakesAllTheSlack)
{
    SizedInput* const left = input(0, 0, 40, 10);
    SizedInput* const right = input(0, 1, 55, 10); // and 5 between the columns
    grid.setEnableOuterEdgePadding(false, false);
    grid.setStretchColumn(1);
    EXPECT_EQ(measure(), QSizeF(100, 15));
    grid.layout(300, 0, 0, 7);
    EXPECT_EQ(left->pos(), QPointF(0, 7));
    EXPECT_EQ(left->rect(), QRectF(0, 0, 40, 10));
    EXPECT_EQ(right->pos(), QPointF(45, 7));
    EXPECT_EQ(right->rect(), QRectF(0, 0, 255, 10));
}

TEST_F(Grid, WithoutAStretchColumnAllGrowInProportion)
{
    SizedInput* const left = input(0, 0, 40, 10);
    SizedInput* const right = input(0, 1, 55, 10);
    grid.setEnableOuterEdgePadding(false, false);
    measure();
    grid.layout(300, 0, 0, 7);
    EXPECT_EQ(left->rect(), QRectF(0, 0, 120, 10));
    EXPECT_EQ(right->pos(), QPointF(125, 7));
    EXPECT_EQ(right->rect(), QRectF(0, 0, 175, 10));
    grid.layout(50, 0, 0, 7);
    EXPECT_EQ(left->rect().width(), 20) << "and shrink";
    EXPECT_EQ(right->rect().width(), 25);
}

TEST_F(Grid, AStretchColumnThatIsNotThereTakesTheSlackAway)
{
    SizedInput* const left = input(0, 0, 40, 10);
    SizedInput* const right = input(0, 1, 55, 10);
    grid.setEnableOuterEdgePadding(false, false);
    for (const int column : {7, -2}) {
        grid.setStretchColumn(column);
        measure();
        grid.layout(300, 0, 0, 0);
        EXPECT_EQ(left->rect().width(), 40);
        EXPECT_EQ(right->rect().width(), 55);
    }
    grid.setStretchColumn(-1);
    measure();
    grid.layout(300, 0, 0, 0);
    EXPECT_EQ(left->rect().width(), 120);
}

TEST_F(Grid, PadsTheOuterEdges)
{
    SizedInput* const plain = input(0, 0, 40, 10);
    SizedInput* const anchored = input(0, 1, 50, 10, 1, 1, 0, true);
    EXPECT_EQ(measure(), QSizeF(40 + 9 + 50 + 2 + 5, 15));
    grid.layout(106, 0, 0, 0);
    EXPECT_EQ(plain->pos(), QPointF(9, 0));
    EXPECT_EQ(plain->rect().width(), 40);
    EXPECT_EQ(anchored->pos(), QPointF(54, 0));
    EXPECT_EQ(anchored->rect().width(), 50);

    grid.setEnableOuterEdgePadding(false, true);
    EXPECT_EQ(measure().width(), 97);
    grid.setEnableOuterEdgePadding(true, false);
    EXPECT_EQ(measure().width(), 104);
    grid.setEnableOuterEdgePadding(false, false);
    EXPECT_EQ(measure().width(), 95);
    grid.layout(95, 0, 0, 0);
    EXPECT_EQ(plain->pos(), QPointF(0, 0));
}

TEST_F(Grid, PadsASingleColumnOnBothSides)
{
    SizedInput* const field = input(0, 0, 40, 10);
    EXPECT_EQ(measure(), QSizeF(58, 15));
    grid.layout(100, 0, 0, 0);
    EXPECT_EQ(field->pos(), QPointF(9, 0));
    EXPECT_EQ(field->rect(), QRectF(0, 0, 82, 10));
}

TEST_F(Grid, ColumnsInTheMiddleHaveTheGapAlone)
{
    input(0, 0, 10, 10);
    SizedInput* const middle = input(0, 1, 20, 10, 1, 1, 0, true);
    input(0, 2, 30, 10);
    EXPECT_EQ(measure(), QSizeF(19 + 25 + 44, 15));
    grid.layout(88, 0, 0, 0);
    EXPECT_EQ(middle->pos(), QPointF(24, 0));
    EXPECT_EQ(middle->rect().width(), 20);
}

TEST_F(Grid, AHiddenFieldMeasuresNothingButIsMoved)
{
    SizedInput* const shown = input(0, 0, 40, 10);
    SizedInput* const hidden = input(1, 0, 400, 100, 1, 1, 300);
    hidden->setVisible(false);
    EXPECT_EQ(measure(), QSizeF(58, 15));
    EXPECT_EQ(inputLabel, 0);
    hidden->setPos(-1, -1);
    grid.layout(58, 0, 0, 3);
    EXPECT_EQ(shown->pos(), QPointF(9, 3));
    EXPECT_EQ(hidden->pos(), QPointF(9, 18));
    EXPECT_EQ(hidden->rect(), QRectF(0, 0, 40, 0)) << "never lower than nothing";
}

TEST_F(Grid, ReportsLabelsOfControlsInTheOuterColumns)
{
    input(0, 0, 10, 10, 1, 1, 30);
    input(1, 0, 10, 10, 1, 1, 20);
    input(2, 0, 10, 10, 1, 1, 99, true); // anchored
    input(0, 1, 10, 10, 1, 1, 88);       // not in the first column
    output(1, 1, 10, 10, 1, 1, 40);
    output(2, 1, 10, 10, 1, 1, 35);
    output(3, 1, 10, 10, 1, 1, 77, true);
    output(3, 0, 10, 10, 1, 1, 66); // not in the last column
    measure();
    EXPECT_EQ(inputLabel, 30);
    EXPECT_EQ(outputLabel, 40);
    EXPECT_EQ(grid.calculateSize(nullptr, nullptr), measure());
}

TEST_F(Grid, HandsLabelWidthsToTheOuterColumns)
{
    SizedInput* const in = input(0, 0, 10, 10, 1, 1, 0, true);
    SizedInput* const inRight = input(0, 1, 10, 10);
    SizedOutput* const outLeft = output(1, 0, 10, 10);
    SizedOutput* const out = output(1, 1, 10, 10);
    SizedOutput* const wide = output(2, 0, 10, 10, 1, 2);
    measure();
    grid.layout(100, 41, 42, 0);
    EXPECT_EQ(in->lastLabelWidth, 42);
    EXPECT_EQ(inRight->lastLabelWidth, 0);
    EXPECT_EQ(outLeft->lastLabelWidth, 0);
    EXPECT_EQ(out->lastLabelWidth, 41);
    EXPECT_EQ(wide->lastLabelWidth, 41);
}

TEST_F(Grid, ALaterCellReplacesAnEarlierOne)
{
    SizedInput* const early = input(0, 0, 400, 100);
    SizedInput* const late = input(0, 0, 40, 10);
    EXPECT_EQ(measure(), QSizeF(58, 15));
    grid.layout(58, 0, 0, 3);
    EXPECT_EQ(early->resized, 0);
    EXPECT_EQ(late->resized, 1);
}

TEST_F(Grid, GrowsByCellsFarAway)
{
    SizedInput* const field = input(2, 3, 40, 10);
    EXPECT_EQ(measure(), QSizeF(40 + 9 + 5, 15));
    grid.layout(54, 0, 0, 1);
    EXPECT_EQ(field->pos(), QPointF(5, 1));
    EXPECT_EQ(field->rect(), QRectF(0, 0, 40, 10));
}

TEST_F(Grid, ASpanDividesItsWidthAndCountsItsFillersAgain)
{
    SizedInput* const wide = input(0, 0, 60, 10, 1, 2); // 69 in two halves: 34.5 each, cut to whole numbers
    SizedInput* const right = input(0, 2, 26, 10);      // 40
    grid.setStretchColumn(9);
    EXPECT_EQ(measure(), QSizeF(108, 15)) << "34 + 34.5 is cut to 68";
    grid.layout(200, 0, 0, 0);
    EXPECT_EQ(wide->rect().width(), 68 - 9);
    EXPECT_EQ(right->pos(), QPointF(68 + 34 + 5, 0)) << "the covered column's width counts once more";
}

TEST_F(Grid, ARowSpanSharesItsHeightInTheFirstColumnOnly)
{
    SizedInput* const tall = input(0, 0, 60, 45, 2, 2); // two rows of 25
    SizedInput* const small = input(1, 2, 10, 5);
    EXPECT_EQ(measure().height(), 50);
    grid.layout(static_cast<float>(measure().width()), 0, 0, 100);
    EXPECT_EQ(tall->rect().height(), 45);
    EXPECT_EQ(small->pos().y(), 125);
    EXPECT_EQ(small->rect().height(), 20);
}

TEST_F(Grid, CutsTheSumsOfWidthsToWholeNumbersButNotTheSumOfHeights)
{
    input(0, 0, 10.75F, 10.75F);
    input(1, 1, 10.75F, 10.75F);
    input(2, 2, 10.75F, 10.75F);
    grid.setEnableOuterEdgePadding(false, false);
    EXPECT_EQ(measure(), QSizeF(10 + 15 + 15, 47.25)) << "10.75, then 10 + 15.75, then 25 + 15.75";
}

TEST_F(Grid, SumsOfRowSpansAreCutToo)
{
    SizedInput* const tall = input(0, 0, 10, 20, 2, 1); // 12.5 a row
    grid.setEnableOuterEdgePadding(false, false);
    EXPECT_EQ(measure().height(), 25);
    grid.layout(10, 0, 0, 0);
    EXPECT_EQ(tall->rect().height(), 24 - 5);
}

TEST_F(Grid, NestedLayoutsGetTheirCellsWidthAndNoPlaceInTheRow)
{
    InnerLayout first(30, 20), second(70, 10);
    grid.addLayout(&first, 0, 0, 1, 1);
    grid.addLayout(&second, 0, 1, 1, 1);
    EXPECT_EQ(measure(), QSizeF(100, 20)) << "without padding, gap and spacing";
    grid.layout(200, 41, 42, 9);
    ASSERT_EQ(first.calls.size(), 1U);
    EXPECT_EQ(first.calls[0], std::make_tuple(60.0F, 41.0F, 42.0F, 9.0F));
    ASSERT_EQ(second.calls.size(), 1U);
    EXPECT_EQ(second.calls[0], std::make_tuple(140.0F, 0.0F, 0.0F, 9.0F));
}

TEST_F(Grid, WithoutAnyWidthHasNoRatio)
{
    InnerLayout inner(0, 20);
    grid.addLayout(&inner, 0, 0, 1, 1);
    EXPECT_EQ(measure(), QSizeF(0, 20));
    grid.layout(200, 0, 0, 0);
    EXPECT_EQ(inner.calls.at(0), std::make_tuple(0.0F, 0.0F, 0.0F, 0.0F));
}

TEST_F(Grid, FieldsNeverGetNegativeSizes)
{
    SizedInput* const field = input(0, 0, 40, 10);
    measure();
    grid.layout(3, 0, 0, 0);
    EXPECT_EQ(field->rect(), QRectF(0, 0, 0, 10));
}

TEST_F(Grid, LaysOutANode)
{
    TestNode node;
    InputField* const control = node.addControl("control", "Control");
    OutputField* const out = node.addOutput("out", "Out");
    grid.addInputField(control, 0, 0, 1, 1);
    grid.addOutputField(out, 0, 1, 1, 1);
    grid.setStretchColumn(1);
    node.setNodeLayout(&grid);
    const double y = Ondrel::Node::headerHeight() + 5;
    EXPECT_EQ(node.rect(), QRectF(0, 0, 200, y + plainFieldHeight() + 5));
    EXPECT_EQ(control->pos(), QPointF(9, y));
    EXPECT_EQ(control->rect().width(), control->minWidth());
    const double x = 9 + control->minWidth();
    EXPECT_EQ(out->pos(), QPointF(x + 5, y));
    EXPECT_EQ(out->rect().width(), 200 - x - 5 - 2);
}

// --- Random grids against the plain form of the two algorithms -----------------------------------------------------

struct PlainCell {
    int type = GridLayout::EmptyCell;
    FieldBase* field = nullptr;
    InnerLayout* layout = nullptr;
    unsigned int rowSpan = 1, columnSpan = 1;
};

struct Placed {
    QPointF position;
    QSizeF size;
    float label;
};

struct PlainGrid {
    void add(const PlainCell& cell, unsigned int row, unsigned int column)
    {
        columns = std::max(columns, column + cell.columnSpan);
        rows.resize(std::max<std::size_t>(rows.size(), row + cell.rowSpan));
        for (auto& r : rows)
            r.resize(columns);
        for (unsigned int r = row; r < row + cell.rowSpan; ++r)
            for (unsigned int c = column; c < column + cell.columnSpan; ++c) {
                rows[r][c] = PlainCell();
                rows[r][c].type = GridLayout::SpannedCell;
            }
        rows[row][column] = cell;
    }

    static float padding(const FieldBase* field) { return field->anchor() ? 2.0F : 9.0F; }

    QSizeF measured(const PlainCell& cell, unsigned int c)
    {
        const unsigned int e = c + cell.columnSpan;
        if (cell.field && cell.field->isVisible()) {
            const float p = padding(cell.field);
            float extra = 5;
            if (c == 0)
                extra = p * static_cast<float>(left) + (e == columns ? p * static_cast<float>(right) : 0);
            else if (e == columns)
                extra = p * static_cast<float>(right) + 5;
            if (!cell.field->anchor()) {
                if (c == 0 && cell.type == GridLayout::InputCell)
                    inputLabel = std::max(inputLabel, cell.field->labelWidth());
                else if (e == columns && cell.type == GridLayout::OutputCell)
                    outputLabel = std::max(outputLabel, cell.field->labelWidth());
            }
            return {cell.field->minWidth() + extra, cell.field->minHeight() + 5};
        }
        return cell.layout ? cell.layout->size : QSizeF(0, 0);
    }

    QSizeF measure()
    {
        inputLabel = outputLabel = 0;
        std::vector<std::vector<QSizeF>> sizes(rows.size(), std::vector<QSizeF>(columns, QSizeF(-1, -1)));
        for (unsigned int r = 0; r < rows.size(); ++r)
            for (unsigned int c = 0; c < columns; ++c) {
                const PlainCell& cell = rows[r][c];
                if (cell.type == GridLayout::EmptyCell || cell.type == GridLayout::SpannedCell)
                    continue;
                const QSizeF whole = measured(cell, c);
                const QSizeF part(whole.width() / cell.columnSpan, whole.height() / cell.rowSpan);
                for (unsigned int k = c; k < c + cell.columnSpan; ++k)
                    sizes[r][k] = part;
                for (unsigned int k = r + 1; k < r + cell.rowSpan; ++k)
                    sizes[k][c] = part;
            }
        heights.assign(rows.size(), 0);
        widths.assign(columns, 0);
        float height = 0;
        for (unsigned int r = 0; r < rows.size(); ++r) {
            for (unsigned int c = 0; c < columns; ++c) {
                heights[r] = std::max(heights[r], static_cast<float>(sizes[r][c].height()));
                widths[c] = std::max(widths[c], static_cast<float>(sizes[r][c].width()));
            }
            height += heights[r];
        }
        return {static_cast<double>(sum(widths, 0, columns)), height};
    }

    static int sum(const std::vector<float>& terms, unsigned int first, unsigned int count)
    {
        int total = 0;
        for (unsigned int i = first; i < first + count; ++i)
            total = static_cast<int>(static_cast<float>(total) + terms[i]);
        return total;
    }

    void place(float width, float outputLabelWidth, float inputLabelWidth, float y)
    {
        placed.clear();
        const int s = sum(widths, 0, columns);
        const float ratio = s == 0 ? 0 : width / static_cast<float>(s);
        for (unsigned int r = 0; r < rows.size(); ++r) {
            float x = 0;
            for (unsigned int c = 0; c < columns; ++c) {
                const PlainCell& cell = rows[r][c];
                float cw = static_cast<float>(sum(widths, c, cell.columnSpan));
                if (stretch == static_cast<int>(c))
                    cw += width - static_cast<float>(s);
                else if (stretch == -1)
                    cw *= ratio;
                const float rh = static_cast<float>(sum(heights, r, cell.rowSpan));
                const bool last = c + cell.columnSpan == columns;
                if (cell.field) {
                    const float p = padding(cell.field);
                    const float l = c == 0 ? p * static_cast<float>(left) : 5;
                    const float t = last ? p * static_cast<float>(right) : 0;
                    float label = 0;
                    if (cell.type == GridLayout::InputCell && c == 0)
                        label = inputLabelWidth;
                    else if (cell.type == GridLayout::OutputCell && last)
                        label = outputLabelWidth;
                    placed[cell.field] = {{x + l, y}, {std::max(cw - l - t, 0.0F), std::max(rh - 5, 0.0F)}, label};
                } else if (cell.layout) {
                    calls[cell.layout].emplace_back(cw, c == 0 ? outputLabelWidth : 0, c == 0 ? inputLabelWidth : 0, y);
                }
                x += cw;
            }
            y += heights[r];
        }
    }

    unsigned int columns = 0;
    std::vector<std::vector<PlainCell>> rows;
    std::vector<float> heights, widths;
    int left = 1, right = 1, stretch = -1;
    float inputLabel = 0, outputLabel = 0;
    std::map<FieldBase*, Placed> placed;
    std::map<InnerLayout*, std::vector<std::tuple<float, float, float, float>>> calls;
};

TEST_F(Grid, RandomGridsAgreeWithThePlainForm)
{
    std::mt19937 random(7);
    const auto pick = [&random](unsigned int count) { return static_cast<unsigned int>(random() % count); };
    // Quarters, and spans that are powers of two: exact in every order of calculation.
    const auto length = [&pick](unsigned int limit) { return static_cast<float>(pick(4 * limit)) / 4; };
    constexpr unsigned int kSpans[] = {1, 1, 1, 2, 2, 4};
    for (int round = 0; round < 400; ++round) {
        QGraphicsRectItem owner;
        GridLayout actual;
        PlainGrid plain;
        std::vector<std::unique_ptr<InnerLayout>> inner;
        std::vector<SizedInput*> inputs;
        std::vector<SizedOutput*> outputs;
        for (unsigned int i = 1 + pick(8); i > 0; --i) {
            PlainCell cell;
            cell.type = static_cast<int>(pick(3));
            cell.rowSpan = kSpans[pick(6)];
            cell.columnSpan = kSpans[pick(6)];
            const unsigned int row = pick(5), column = pick(5);
            const bool anchored = pick(2);
            Anchor* const anchor = anchored && cell.type != 2 ? new Anchor(nullptr, Anchor::Input) : nullptr;
            if (cell.type == GridLayout::LayoutCell) {
                inner.push_back(std::make_unique<InnerLayout>(length(90), length(60)));
                cell.layout = inner.back().get();
                actual.addLayout(cell.layout, row, column, cell.rowSpan, cell.columnSpan);
            } else if (cell.type == GridLayout::InputCell) {
                inputs.push_back(new SizedInput(&owner, anchor, length(90), length(60), length(50)));
                cell.field = inputs.back();
                actual.addInputField(inputs.back(), row, column, cell.rowSpan, cell.columnSpan);
            } else {
                outputs.push_back(new SizedOutput(&owner, anchor, length(90), length(60), length(50)));
                cell.field = outputs.back();
                actual.addOutputField(outputs.back(), row, column, cell.rowSpan, cell.columnSpan);
            }
            if (cell.field && pick(5) == 0)
                cell.field->setVisible(false);
            plain.add(cell, row, column);
        }
        plain.left = static_cast<int>(pick(2));
        plain.right = static_cast<int>(pick(2));
        actual.setEnableOuterEdgePadding(plain.left == 1, plain.right == 1);
        plain.stretch = static_cast<int>(pick(7)) - 1;
        actual.setStretchColumn(plain.stretch);

        float outputLabelWidth = -1, inputLabelWidth = -1;
        const QSizeF size = plain.measure();
        ASSERT_EQ(actual.calculateSize(&outputLabelWidth, &inputLabelWidth), size) << round;
        ASSERT_EQ(outputLabelWidth, plain.outputLabel) << round;
        ASSERT_EQ(inputLabelWidth, plain.inputLabel) << round;

        const float width = static_cast<float>(size.width()) * (0.5F + static_cast<float>(pick(5)) / 4);
        plain.place(width, 41, 42, 33.25F);
        actual.layout(width, 41, 42, 33.25F);
        for (const auto& [field, where] : plain.placed) {
            ASSERT_EQ(field->pos(), where.position) << round;
            ASSERT_EQ(field->rect(), QRectF(QPointF(), where.size)) << round;
        }
        for (SizedInput* field : inputs) {
            const auto it = plain.placed.find(field);
            ASSERT_EQ(field->resized, it == plain.placed.end() ? 0 : 1) << round;
            if (it != plain.placed.end()) {
                ASSERT_EQ(field->lastLabelWidth, it->second.label) << round;
            }
        }
        for (SizedOutput* field : outputs) {
            const auto it = plain.placed.find(field);
            ASSERT_EQ(field->resized, it == plain.placed.end() ? 0 : 1) << round;
            if (it != plain.placed.end()) {
                ASSERT_EQ(field->lastLabelWidth, it->second.label) << round;
            }
        }
        for (const auto& layout : inner)
            ASSERT_EQ(layout->calls, plain.calls[layout.get()]) << round;
    }
}

} // namespace
