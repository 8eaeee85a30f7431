// Steps of the library on Qt's undo framework, and the stack bounded by bytes.

#include <ondrel/work/undoadapter.h>

#include <QSignalSpy>
#include <QString>
#include <QVector>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <random>
#include <vector>

namespace
{

using Ondrel::MemoryAwareUndoCommand;
using Ondrel::MemoryBoundedUndoStack;
using Ondrel::UndoAdapter;

constexpr int cellCount = 8;
using Cells = std::vector<int>;

// Sets one cell. The edit is done by the constructor, as a mode does it before it hands the step over.
class SetCell : public MemoryAwareUndoCommand
{
public:
    SetCell(Cells& cells, std::size_t cell, int value, std::size_t bytes, bool merges = false)
        : MemoryAwareUndoCommand(QStringLiteral("Set cell %1 to %2").arg(cell).arg(value))
        , m_cells(cells)
        , m_cell(cell)
        , m_before(cells[cell])
        , m_after(value)
        , m_bytes(bytes)
        , m_merges(merges)
    {
        performRedo();
    }

    int id() const override { return m_merges ? 7 : -1; }
    std::size_t memoryUsage() const override { return m_bytes; }
    void performUndo() override { m_cells[m_cell] = m_before; }
    void performRedo() override
    {
        m_cells[m_cell] = m_after;
        ++redos;
    }
    bool mergeWith(const MemoryAwareUndoCommand* other) override
    {
        const auto* next = dynamic_cast<const SetCell*>(other);
        if (!next || next->m_cell != m_cell)
            return false;
        m_after = next->m_after;
        m_bytes += next->m_bytes;
        setText(next->text());
        return true;
    }

    int redos = 0;

private:
    Cells& m_cells;
    std::size_t m_cell;
    int m_before;
    int m_after;
    std::size_t m_bytes;
    bool m_merges;
};

std::unique_ptr<SetCell> setCell(Cells& cells, std::size_t cell, int value, std::size_t bytes = 1, bool merges = false)
{
    return std::make_unique<SetCell>(cells, cell, value, bytes, merges);
}

TEST(UndoAdapter, AStepThatIsPushedIsNotDoneAgainAndItsCountStaysTrue)
{
    Cells cells(cellCount);
    auto step = setCell(cells, 2, 5);
    const SetCell& command = *step;
    QUndoStack stack;
    stack.push(std::make_unique<UndoAdapter>(std::move(step)).release());
    EXPECT_EQ(command.redos, 1); // by its maker
    EXPECT_FALSE(command.isUndone());
    stack.undo();
    EXPECT_EQ(cells[2], 0);
    EXPECT_TRUE(command.isUndone());
    stack.redo();
    EXPECT_EQ(cells[2], 5);
    EXPECT_EQ(command.redos, 2);
    EXPECT_FALSE(command.isUndone());
    stack.undo();
    EXPECT_TRUE(command.isUndone());
}

TEST(UndoAdapter, ForwardsTextIdAndMemory)
{
    Cells cells(cellCount);
    const UndoAdapter plain(setCell(cells, 1, 4, 30));
    EXPECT_EQ(plain.text(), QStringLiteral("Set cell 1 to 4"));
    EXPECT_EQ(plain.id(), -1);
    EXPECT_EQ(plain.memoryUsage(), 30U);
    EXPECT_EQ(plain.command()->memoryUsage(), 30U);
    EXPECT_EQ(UndoAdapter(setCell(cells, 1, 4, 30, true)).id(), 7);
}

TEST(UndoAdapter, MergesWhatTheCommandsMergeAndShowsTheNewText)
{
    Cells cells(cellCount);
    MemoryBoundedUndoStack stack(100);
    stack.push(setCell(cells, 3, 1, 10, true));
    stack.push(setCell(cells, 3, 2, 10, true));
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.memoryUsage(), 20U);
    EXPECT_EQ(stack.undoText(), QStringLiteral("Set cell 3 to 2"));
    stack.push(setCell(cells, 4, 9, 10, true));
    EXPECT_EQ(stack.count(), 2);
    stack.undo();
    stack.undo();
    EXPECT_EQ(cells, Cells(cellCount));
    stack.redo();
    EXPECT_EQ(cells[3], 2);
}

TEST(UndoAdapter, DoesNotMergeWithACommandOfAnotherKind)
{
    Cells cells(cellCount);
    UndoAdapter adapter(setCell(cells, 0, 1, 1, true));
    const QUndoCommand other;
    EXPECT_FALSE(adapter.mergeWith(&other));
    EXPECT_FALSE(adapter.mergeWith(nullptr));
}

TEST(UndoAdapter, ANullCommandIsDroppedByTheStack)
{
    MemoryBoundedUndoStack stack(100);
    stack.push(std::unique_ptr<MemoryAwareUndoCommand>());
    stack.push(static_cast<QUndoCommand*>(nullptr));
    EXPECT_EQ(stack.count(), 0);
    UndoAdapter adapter(nullptr);
    adapter.redo();
    adapter.undo();
    EXPECT_EQ(adapter.id(), -1);
    EXPECT_EQ(adapter.memoryUsage(), 0U);
    EXPECT_EQ(adapter.command(), nullptr);
}

TEST(MemoryBoundedUndoStack, DropsTheOldestStepsAndTellsItsViews)
{
    Cells cells(cellCount);
    MemoryBoundedUndoStack stack(100);
    EXPECT_EQ(stack.byteLimit(), 100U);
    stack.push(setCell(cells, 0, 1, 40));
    stack.push(setCell(cells, 1, 1, 60));
    EXPECT_EQ(stack.count(), 2); // exactly the limit
    QSignalSpy indexChanged(&stack, SIGNAL(indexChanged(int)));
    stack.push(setCell(cells, 2, 1, 41));
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(stack.memoryUsage(), 41U);
    EXPECT_EQ(indexChanged.last().at(0).toInt(), 1);
    stack.undo();
    EXPECT_FALSE(stack.canUndo());
    EXPECT_EQ(cells, (Cells{1, 1, 0, 0, 0, 0, 0, 0}));
}

TEST(MemoryBoundedUndoStack, AStepAboveTheLimitLeavesAnEmptyStack)
{
    Cells cells(cellCount);
    MemoryBoundedUndoStack stack(100);
    stack.push(setCell(cells, 0, 1, 40));
    QSignalSpy canUndoChanged(&stack, SIGNAL(canUndoChanged(bool)));
    stack.push(setCell(cells, 1, 1, 101));
    EXPECT_EQ(stack.count(), 0);
    EXPECT_EQ(stack.memoryUsage(), 0U);
    EXPECT_FALSE(canUndoChanged.last().at(0).toBool());
    EXPECT_EQ(cells[1], 1);
}

TEST(MemoryBoundedUndoStack, KeepsTheCleanStateWhileItCanBeReached)
{
    Cells cells(cellCount);
    MemoryBoundedUndoStack stack(2);
    stack.push(setCell(cells, 0, 1));
    stack.push(setCell(cells, 1, 1));
    stack.setClean();
    stack.push(setCell(cells, 2, 1));
    EXPECT_EQ(stack.cleanIndex(), 1);
    stack.push(setCell(cells, 3, 1));
    EXPECT_EQ(stack.cleanIndex(), 0);
    stack.push(setCell(cells, 4, 1));
    EXPECT_EQ(stack.cleanIndex(), -1);
    stack.undo();
    stack.undo();
    EXPECT_FALSE(stack.isClean());
}

TEST(MemoryBoundedUndoStack, CountsTheStepsOfAMacroAndWaitsForItsEnd)
{
    Cells cells(cellCount);
    MemoryBoundedUndoStack stack(100);
    stack.push(setCell(cells, 0, 1, 50));
    stack.beginMacro(QStringLiteral("Two cells"));
    stack.push(setCell(cells, 1, 1, 30));
    stack.push(setCell(cells, 2, 1, 30));
    stack.endMacro();
    EXPECT_EQ(stack.memoryUsage(), 110U);
    stack.push(setCell(cells, 3, 1, 40));
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.memoryUsage(), 100U);
    stack.undo();
    stack.undo();
    EXPECT_EQ(cells, (Cells{1, 0, 0, 0, 0, 0, 0, 0}));
    stack.redo();
    EXPECT_EQ(cells, (Cells{1, 1, 1, 0, 0, 0, 0, 0}));
}

class UndoneByASlot : public QObject
{
    Q_OBJECT
public:
    explicit UndoneByASlot(QUndoStack& stack, int steps)
        : m_stack(stack)
        , m_steps(steps)
    {
        connect(&stack, SIGNAL(indexChanged(int)), this, SLOT(undo()));
    }

private Q_SLOTS:
    void undo()
    {
        disconnect(&m_stack, SIGNAL(indexChanged(int)), this, SLOT(undo()));
        for (int i = 0; i < m_steps; ++i)
            m_stack.undo();
    }

private:
    QUndoStack& m_stack;
    int m_steps;
};

TEST(MemoryBoundedUndoStack, NeverKeepsAnUndoneStepWithoutTheStepsBeforeIt)
{
    for (int undone = 0; undone <= 3; ++undone) {
        Cells cells(cellCount);
        MemoryBoundedUndoStack stack(100);
        stack.push(setCell(cells, 0, 1, 50));
        stack.push(setCell(cells, 0, 2, 50));
        const UndoneByASlot slot(stack, undone);
        stack.push(setCell(cells, 0, 3, 90)); // leaves room for itself alone
        EXPECT_EQ(stack.count(), undone <= 1 ? 1 : 0) << undone;
        EXPECT_EQ(stack.index(), undone == 0 ? 1 : 0) << undone;
        EXPECT_LE(stack.memoryUsage(), 100U);
    }
}

TEST(MemoryBoundedUndoStack, UndoneAndRedoneEditsGiveTheSameStateAndTheBoundHoldsAfterEachPush)
{
    std::mt19937 random(1);
    const auto below = [&random](std::size_t n) { return std::size_t(random()) % n; };
    for (int round = 0; round < 200; ++round) {
        Cells cells(cellCount);
        MemoryBoundedUndoStack stack(200);
        QVector<Cells> states{cells}; // the states that the steps on the stack lead through
        for (int edit = 0; edit < 60; ++edit) {
            if (below(4) == 0) {
                for (std::size_t undos = below(4); undos > 0; --undos)
                    stack.undo();
                ASSERT_EQ(cells, states[stack.index()]);
            }
            states.resize(stack.index() + 1);
            const QUndoCommand* last = stack.index() > 0 ? stack.command(stack.index() - 1) : nullptr;
            stack.push(setCell(cells, below(cellCount), int(below(1000)), below(220), below(2) == 0));
            ASSERT_LE(stack.memoryUsage(), 200U);
            if (stack.count() > 0 && stack.command(stack.count() - 1) == last) // merged
                states.pop_back();
            states.push_back(cells);
            ASSERT_GE(states.size(), stack.count() + 1);
            states.erase(states.begin(), states.end() - (stack.count() + 1));
        }
        const Cells edited = cells;
        while (stack.canUndo())
            stack.undo();
        ASSERT_EQ(cells, states.front());
        while (stack.canRedo())
            stack.redo();
        ASSERT_EQ(cells, edited);
    }
}

} // namespace

#include "undoadapter_test.moc"
