#include <ondrel/nodes/fieldbase.h>
#include <ondrel/nodes/layouts.h>
#include <ondrel/nodes/layoutspacing_p.h>

#include <algorithm>

namespace Ondrel
{
namespace
{

constexpr GridLayout::Cell kEmptyCell = {GridLayout::EmptyCell, nullptr, nullptr, 1, 1};
constexpr GridLayout::Cell kSpannedCell = {GridLayout::SpannedCell, nullptr, nullptr, 1, 1};

// The sum of up to `count` lengths, without the fraction of any partial sum. Nodes have been laid out so from the
// beginning, and graphs are arranged around them.
float sumOfWholes(const std::vector<float>& lengths, std::size_t first, std::size_t count)
{
    const std::size_t end = first + std::min(count, lengths.size() - std::min(first, lengths.size()));
    int sum = 0;
    for (std::size_t i = first; i < end; ++i)
        sum = static_cast<int>(static_cast<float>(sum) + lengths[i]);
    return static_cast<float>(sum);
}

void widen(float* labelWidth, const FieldBase& field)
{
    if (labelWidth)
        *labelWidth = std::max(*labelWidth, field.labelWidth());
}

} // namespace

GridLayout::GridLayout() = default;

void GridLayout::addInputField(InputField* field, unsigned int row, unsigned int column, unsigned int rowSpan,
                               unsigned int columnSpan)
{
    addCell({InputCell, field, nullptr, rowSpan, columnSpan}, row, column);
}

void GridLayout::addOutputField(OutputField* field, unsigned int row, unsigned int column, unsigned int rowSpan,
                                unsigned int columnSpan)
{
    addCell({OutputCell, field, nullptr, rowSpan, columnSpan}, row, column);
}

void GridLayout::addLayout(Layout* layout, unsigned int row, unsigned int column, unsigned int rowSpan,
                           unsigned int columnSpan)
{
    addCell({LayoutCell, nullptr, layout, rowSpan, columnSpan}, row, column);
}

void GridLayout::addCell(const Cell& cell, unsigned int row, unsigned int column)
{
    Cell added = cell;
    added.rowSpan = std::max(added.rowSpan, 1u);
    added.columnSpan = std::max(added.columnSpan, 1u);
    const std::size_t endRow = std::size_t(row) + added.rowSpan;
    const std::size_t endColumn = std::size_t(column) + added.columnSpan;

    m_columnCount = std::max(m_columnCount, endColumn);
    m_cells.resize(std::max(m_cells.size(), endRow));
    for (std::vector<Cell>& cells : m_cells)
        cells.resize(m_columnCount, kEmptyCell);
    for (std::size_t r = row; r < endRow; ++r)
        std::fill(m_cells[r].begin() + column, m_cells[r].begin() + std::ptrdiff_t(endColumn), kSpannedCell);
    m_cells[row][column] = added;
}

void GridLayout::setStretchColumn(int column)
{
    m_stretchColumn = column;
}

void GridLayout::setEnableOuterEdgePadding(bool left, bool right)
{
    m_leftOuterPadding = left ? 1 : 0;
    m_rightOuterPadding = right ? 1 : 0;
}

bool GridLayout::endsAtLastColumn(const Cell& cell, std::size_t column) const
{
    return column + cell.columnSpan == m_columnCount;
}

float GridLayout::leftPadding(const Cell& cell, std::size_t column) const
{
    return column == 0 ? fieldHorizontalPadding(cell.field) * static_cast<float>(m_leftOuterPadding) : kColumnGap;
}

float GridLayout::rightPadding(const Cell& cell, std::size_t column) const
{
    if (!endsAtLastColumn(cell, column))
        return 0;
    return fieldHorizontalPadding(cell.field) * static_cast<float>(m_rightOuterPadding);
}

QSizeF GridLayout::measureCell(const Cell& cell, std::size_t column, float* outputLabelWidth,
                               float* inputLabelWidth) const
{
    const FieldBase* field = cell.field;
    if (field && field->isVisible()) {
        if (!field->anchor() && cell.type == InputCell && column == 0)
            widen(inputLabelWidth, *field);
        if (!field->anchor() && cell.type == OutputCell && endsAtLastColumn(cell, column))
            widen(outputLabelWidth, *field);
        const float padding = leftPadding(cell, column) + rightPadding(cell, column);
        return QSizeF(qreal(field->minWidth() + padding), qreal(field->minHeight() + kRowSpacing));
    }
    return cell.layout ? cell.layout->calculateSize(nullptr, nullptr) : QSizeF(0, 0);
}

// The even share of a cell in each slot that counts: its columns in the first row and, below that, its first column.
// Where cells overlap, the slot has the share of the one that comes last.
std::vector<std::vector<QSizeF>> GridLayout::measureSlots(float* outputLabelWidth, float* inputLabelWidth) const
{
    std::vector<std::vector<QSizeF>> shares(m_cells.size(), std::vector<QSizeF>(m_columnCount, QSizeF(-1, -1)));
    for (std::size_t row = 0; row < m_cells.size(); ++row) {
        for (std::size_t column = 0; column < m_columnCount; ++column) {
            const Cell& cell = m_cells[row][column];
            if (cell.type == EmptyCell || cell.type == SpannedCell)
                continue;
            const QSizeF size = measureCell(cell, column, outputLabelWidth, inputLabelWidth);
            const QSizeF share(size.width() / cell.columnSpan, size.height() / cell.rowSpan);
            std::fill_n(shares[row].begin() + std::ptrdiff_t(column), cell.columnSpan, share);
            for (std::size_t r = row + 1; r < row + cell.rowSpan; ++r)
                shares[r][column] = share;
        }
    }
    return shares;
}

QSizeF GridLayout::calculateSize(float* outputLabelWidth, float* inputLabelWidth)
{
    if (outputLabelWidth)
        *outputLabelWidth = 0;
    if (inputLabelWidth)
        *inputLabelWidth = 0;
    const std::vector<std::vector<QSizeF>> shares = measureSlots(outputLabelWidth, inputLabelWidth);
    m_rowHeights.assign(m_cells.size(), 0);
    m_columnWidths.assign(m_columnCount, 0);
    float height = 0;
    for (std::size_t row = 0; row < shares.size(); ++row) {
        for (std::size_t column = 0; column < m_columnCount; ++column) {
            const QSizeF& share = shares[row][column];
            m_rowHeights[row] = std::max(m_rowHeights[row], static_cast<float>(share.height()));
            m_columnWidths[column] = std::max(m_columnWidths[column], static_cast<float>(share.width()));
        }
        height += m_rowHeights[row];
    }
    return QSizeF(qreal(sumOfWholes(m_columnWidths, 0, m_columnCount)), qreal(height));
}

void GridLayout::layout(float width, float outputLabelWidth, float inputLabelWidth, float y)
{
    const float measured = sumOfWholes(m_columnWidths, 0, m_columnCount);
    const float ratio = measured == 0 ? 0 : width / measured;
    for (std::size_t row = 0; row < m_rowHeights.size(); ++row) {
        float x = 0;
        for (std::size_t column = 0; column < m_cells[row].size(); ++column) {
            const Cell& cell = m_cells[row][column];
            float cellWidth = sumOfWholes(m_columnWidths, column, cell.columnSpan);
            if (m_stretchColumn == -1)
                cellWidth *= ratio;
            else if (m_stretchColumn >= 0 && std::size_t(m_stretchColumn) == column)
                cellWidth += width - measured;
            if (cell.field)
                placeField(cell, row, column, x, y, cellWidth,
                           labelWidthOf(cell, column, outputLabelWidth, inputLabelWidth));
            else if (cell.layout)
                cell.layout->layout(cellWidth, column == 0 ? outputLabelWidth : 0, column == 0 ? inputLabelWidth : 0,
                                    y);
            // Covered cells count once more, so that what is right of a column span stands that much further right.
            x += cellWidth;
        }
        y += m_rowHeights[row];
    }
}

// Hidden fields are placed too.
void GridLayout::placeField(const Cell& cell, std::size_t row, std::size_t column, float x, float y, float cellWidth,
                            float labelWidth)
{
    const float left = leftPadding(cell, column);
    const float width = cellWidth - left - rightPadding(cell, column);
    const float height = sumOfWholes(m_rowHeights, row, cell.rowSpan) - kRowSpacing;
    cell.field->setPos(qreal(x + left), qreal(y));
    cell.field->setSize(std::max(width, 0.0f), std::max(height, 0.0f), labelWidth);
}

// Labels stand in a column at the outer edge alone: those of inputs at the left, those of outputs at the right.
float GridLayout::labelWidthOf(const Cell& cell, std::size_t column, float outputLabelWidth,
                               float inputLabelWidth) const
{
    if (cell.type == InputCell && column == 0)
        return inputLabelWidth;
    if (cell.type == OutputCell && endsAtLastColumn(cell, column))
        return outputLabelWidth;
    return 0;
}

} // namespace Ondrel
