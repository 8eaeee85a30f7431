#pragma once

#include <ondrel/ondrel_export.h>

#include <QSizeF>

#include <cstddef>
#include <vector>

namespace Ondrel
{

class FieldBase;
class InputField;
class OutputField;

// An arrangement of fields, for Node::setNodeLayout. It owns neither fields nor other layouts; whoever adds a field to
// a layout also puts it into the node's own list. Lengths are in scene units. User-interface thread only.
class ONDREL_EXPORT Layout
{
public:
    // The size of the content, and the widest label of each kind through pointers that may be null.
    virtual QSizeF calculateSize(float* outputLabelWidth, float* inputLabelWidth) = 0;

    // Places the content in a node of this width, from height y down. To be called after calculateSize.
    virtual void layout(float width, float outputLabelWidth, float inputLabelWidth, float y) = 0;

    // Distance of a field from the node's edge: 2 with an anchor, 9 without.
    static float fieldHorizontalPadding(const FieldBase* field);

protected:
    ~Layout() = default;
};

// One row a field, 5 apart, outputs above inputs. Hidden inputs are left out; outputs never are. A field of height 0
// takes no room.
class ONDREL_EXPORT VerticalLayout : public Layout
{
public:
    void addInputField(InputField* field);
    void addOutputField(OutputField* field);

    QSizeF calculateSize(float* outputLabelWidth, float* inputLabelWidth) override;
    void layout(float width, float outputLabelWidth, float inputLabelWidth, float y) override;

    // The same on any lists. The label widths are those of the fields without an anchor.
    static QSizeF calculateSize(const std::vector<InputField*>& inputs, const std::vector<OutputField*>& outputs,
                                float* outputLabelWidth, float* inputLabelWidth);
    static void layout(float width, float outputLabelWidth, float inputLabelWidth, float y,
                       std::vector<InputField*>& inputs, std::vector<OutputField*>& outputs);

private:
    std::vector<InputField*> m_inputFields;
    std::vector<OutputField*> m_outputFields;
};

// Fields and nested layouts in rows and columns, with spans. A cell of a hidden field measures 0 by 0, but is placed.
// Sums of column widths are taken in whole units: each step of the sum drops its fraction. A column span counts the
// columns behind its first one twice when it places what stands right of it. A nested layout is placed from the node's
// left edge, whatever its column.
class ONDREL_EXPORT GridLayout : public Layout
{
public:
    enum CellType { InputCell = 0, OutputCell = 1, LayoutCell = 2, EmptyCell = 3, SpannedCell = 4 };

    struct Cell {
        CellType type;
        FieldBase* field;
        Layout* layout;
        unsigned int rowSpan;
        unsigned int columnSpan;
    };

    GridLayout();

    // The cells of the spanned rectangle are taken; a later call replaces an earlier one. A span of 0 counts as 1.
    void addInputField(InputField* field, unsigned int row, unsigned int column, unsigned int rowSpan,
                       unsigned int columnSpan);
    void addOutputField(OutputField* field, unsigned int row, unsigned int column, unsigned int rowSpan,
                        unsigned int columnSpan);
    void addLayout(Layout* layout, unsigned int row, unsigned int column, unsigned int rowSpan,
                   unsigned int columnSpan);
    void addCell(const Cell& cell, unsigned int row, unsigned int column);

    // The column that takes all the room that is left; with -1, as at first, all columns grow in proportion.
    void setStretchColumn(int column);

    // False takes the outer padding from the first or the last column, for a grid inside something that has it.
    void setEnableOuterEdgePadding(bool left, bool right);

    QSizeF calculateSize(float* outputLabelWidth, float* inputLabelWidth) override;
    void layout(float width, float outputLabelWidth, float inputLabelWidth, float y) override;

private:
    bool endsAtLastColumn(const Cell& cell, std::size_t column) const;
    float leftPadding(const Cell& cell, std::size_t column) const;
    float rightPadding(const Cell& cell, std::size_t column) const;
    float labelWidthOf(const Cell& cell, std::size_t column, float outputLabelWidth, float inputLabelWidth) const;
    QSizeF measureCell(const Cell& cell, std::size_t column, float* outputLabelWidth, float* inputLabelWidth) const;
    std::vector<std::vector<QSizeF>> measureSlots(float* outputLabelWidth, float* inputLabelWidth) const;
    void placeField(const Cell& cell, std::size_t row, std::size_t column, float x, float y, float cellWidth,
                    float labelWidth);

    std::size_t m_columnCount = 0;
    std::vector<std::vector<Cell>> m_cells;
    std::vector<float> m_rowHeights;
    std::vector<float> m_columnWidths;
    int m_stretchColumn = -1;
    int m_leftOuterPadding = 1;
    int m_rightOuterPadding = 1;
};

} // namespace Ondrel
