#pragma once

#include <ondrel/ondrel_export.h>

#include <QObject>
#include <QString>

#include <cstddef>

namespace Ondrel
{

// The base of one step that can be undone. A mode makes it without a parent and hands it over with the step already
// done; the host's undo stack owns it from then on (see UndoAdapter). User-interface thread only.
class ONDREL_EXPORT MemoryAwareUndoCommand : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)
public:
    // `text` describes the step in menus.
    explicit MemoryAwareUndoCommand(const QString& text);

    // What a stack calls; not meant to be overridden. They call performUndo() or performRedo() and then count.
    virtual void undo();
    virtual void redo();

    // Takes the step `other`, which followed this one and has the same id, into this one; false if that cannot be, and
    // here. `other` is deleted by the caller.
    virtual bool mergeWith(const MemoryAwareUndoCommand* other);
    // The kind of step, for merging; -1 never merges.
    virtual int id() const;

    virtual std::size_t memoryUsage() const = 0; // bytes that the step holds now
    virtual void performUndo() = 0;
    virtual void performRedo() = 0;

    QString text() const;
    void setText(const QString& text);

    // Whether undo() was called more often than redo(). A stack that calls redo() for a new step leaves it one behind:
    // it does not count as undone after the next undo().
    bool isUndone() const;

private:
    int m_undoCount = 0; // negative after more redos than undos
    QString m_text;
};

} // namespace Ondrel
