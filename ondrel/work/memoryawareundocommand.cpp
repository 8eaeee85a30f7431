#include <ondrel/work/memoryawareundocommand.h>

namespace Ondrel
{

MemoryAwareUndoCommand::MemoryAwareUndoCommand(const QString& text)
    : m_text(text)
{
}

void MemoryAwareUndoCommand::undo()
{
    performUndo();
    ++m_undoCount;
}

void MemoryAwareUndoCommand::redo()
{
    performRedo();
    --m_undoCount;
}

bool MemoryAwareUndoCommand::mergeWith(const MemoryAwareUndoCommand* /*other*/)
{
    return false;
}

int MemoryAwareUndoCommand::id() const
{
    return -1;
}

QString MemoryAwareUndoCommand::text() const
{
    return m_text;
}

void MemoryAwareUndoCommand::setText(const QString& text)
{
    m_text = text;
}

bool MemoryAwareUndoCommand::isUndone() const
{
    return m_undoCount > 0;
}

} // namespace Ondrel
