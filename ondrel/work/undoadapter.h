#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/work/memoryawareundocommand.h>

#include <QUndoCommand>
#include <QUndoStack>

#include <cstddef>
#include <memory>

namespace Ondrel
{

// Puts a MemoryAwareUndoCommand on a QUndoStack. The step has been done when it arrives, so the redo() with which the
// stack takes it in is not passed on: neither is the step done twice, nor does its count fall behind, and isUndone()
// tells what it says. User-interface thread only.
class ONDREL_EXPORT UndoAdapter : public QUndoCommand
{
public:
    // Owns the command and shows its text. A null command makes an obsolete adapter, which the stack drops.
    explicit UndoAdapter(std::unique_ptr<MemoryAwareUndoCommand> command, QUndoCommand* parent = nullptr);
    ~UndoAdapter() override;

    void undo() override;
    void redo() override; // does nothing the first time
    int id() const override;
    // False if `other` is not an UndoAdapter. Otherwise the commands decide, and the text is read again.
    bool mergeWith(const QUndoCommand* other) override;

    std::size_t memoryUsage() const; // of the command, in bytes
    const MemoryAwareUndoCommand* command() const;

private:
    std::unique_ptr<MemoryAwareUndoCommand> m_command;
    bool m_taken = false; // by a stack
};

// A QUndoStack that holds no more than a number of bytes. QUndoStack's own limit, a count, may be set as well.
//
// After each push the oldest steps are dropped until the rest fits, so that a step that is larger than the limit cannot
// be undone, nor any before it. While a macro is open nothing is dropped; the next push makes up for it.
class ONDREL_EXPORT MemoryBoundedUndoStack : public QUndoStack
{
    Q_OBJECT
public:
    explicit MemoryBoundedUndoStack(std::size_t byteLimit, QObject* parent = nullptr);

    std::size_t byteLimit() const;
    // The sum over all adapters on the stack, those within macros included; other commands count as 0. Asks each
    // command.
    std::size_t memoryUsage() const;

    // Takes over a step that has been done. A step is merged into the one before it where QUndoStack would do so.
    void push(std::unique_ptr<MemoryAwareUndoCommand> command);
    // As QUndoStack::push, with the bound. Hides it, as that is not virtual: do not push through a QUndoStack pointer.
    // Null is ignored.
    void push(QUndoCommand* command);

private:
    int countThatFits() const; // of the newest steps
    void dropOldest();

    std::size_t m_byteLimit;
};

} // namespace Ondrel
