#include <ondrel/work/undoadapter.h>

#include <algorithm>
#include <limits>
#include <utility>

// QUndoStack drops its oldest commands by count alone, and that count can only be set while it is empty.
#include <private/qundostack_p.h>

namespace Ondrel
{
namespace
{

std::size_t added(std::size_t a, std::size_t b)
{
    return a + std::min(b, std::numeric_limits<std::size_t>::max() - a);
}

// With the commands below it.
std::size_t memoryOf(const QUndoCommand& command)
{
    const auto* adapter = dynamic_cast<const UndoAdapter*>(&command);
    std::size_t bytes = adapter ? adapter->memoryUsage() : 0;
    for (int i = 0; i < command.childCount(); ++i)
        bytes = added(bytes, memoryOf(*command.child(i)));
    return bytes;
}

} // namespace

UndoAdapter::UndoAdapter(std::unique_ptr<MemoryAwareUndoCommand> command, QUndoCommand* parent)
    : QUndoCommand(command ? command->text() : QString(), parent)
    , m_command(std::move(command))
{
    setObsolete(!m_command);
}

UndoAdapter::~UndoAdapter() = default;

void UndoAdapter::undo()
{
    if (m_command)
        m_command->undo();
}

void UndoAdapter::redo()
{
    if (std::exchange(m_taken, true) && m_command)
        m_command->redo();
}

int UndoAdapter::id() const
{
    return m_command ? m_command->id() : -1;
}

bool UndoAdapter::mergeWith(const QUndoCommand* other)
{
    const auto* adapter = dynamic_cast<const UndoAdapter*>(other);
    if (!m_command || !adapter || !adapter->m_command || !m_command->mergeWith(adapter->m_command.get()))
        return false;
    setText(m_command->text());
    return true;
}

std::size_t UndoAdapter::memoryUsage() const
{
    return m_command ? m_command->memoryUsage() : 0;
}

const MemoryAwareUndoCommand* UndoAdapter::command() const
{
    return m_command.get();
}

MemoryBoundedUndoStack::MemoryBoundedUndoStack(std::size_t byteLimit, QObject* parent)
    : QUndoStack(parent)
    , m_byteLimit(byteLimit)
{
}

std::size_t MemoryBoundedUndoStack::byteLimit() const
{
    return m_byteLimit;
}

std::size_t MemoryBoundedUndoStack::memoryUsage() const
{
    std::size_t bytes = 0;
    for (int i = 0; i < count(); ++i)
        bytes = added(bytes, memoryOf(*command(i)));
    return bytes;
}

void MemoryBoundedUndoStack::push(std::unique_ptr<MemoryAwareUndoCommand> command)
{
    push(std::make_unique<UndoAdapter>(std::move(command)).release());
}

void MemoryBoundedUndoStack::push(QUndoCommand* command)
{
    if (!command)
        return;
    QUndoStack::push(command);
    dropOldest();
}

int MemoryBoundedUndoStack::countThatFits() const
{
    std::size_t left = m_byteLimit;
    int fitting = 0;
    for (int i = count() - 1; i >= 0; --i, ++fitting) {
        const std::size_t bytes = memoryOf(*command(i));
        if (bytes > left)
            break;
        left -= bytes;
    }
    return fitting;
}

void MemoryBoundedUndoStack::dropOldest()
{
    auto& stack = *static_cast<QUndoStackPrivate*>(QObjectPrivate::get(this));
    int excess = count() - countThatFits();
    if (excess == 0 || !stack.macro_stack.isEmpty())
        return;
    // A slot may have undone steps during the push. They cannot be redone without those before them.
    if (excess > stack.index)
        excess = count();
    const bool wasClean = isClean();
    for (int i = 0; i < excess; ++i)
        delete stack.command_list.takeFirst();
    stack.index = std::max(stack.index - excess, 0);
    stack.clean_index = std::max(stack.clean_index - excess, -1); // -1: that state cannot be reached any more

    Q_EMIT indexChanged(index());
    Q_EMIT canUndoChanged(canUndo());
    Q_EMIT undoTextChanged(undoText());
    Q_EMIT canRedoChanged(canRedo());
    Q_EMIT redoTextChanged(redoText());
    if (isClean() != wasClean)
        Q_EMIT cleanChanged(isClean());
}

} // namespace Ondrel
