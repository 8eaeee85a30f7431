#pragma once

#include <ondrel/core/rect.h>
#include <ondrel/work/memoryawareundocommand.h>

#include <QPointer>

class CropMode;

// One change of the frame. Consecutive steps by the arrow keys are one.
class CropCommand : public Ondrel::MemoryAwareUndoCommand
{
    Q_OBJECT
public:
    enum Kind { Drag = -1, Nudge = 1 };

    CropCommand(CropMode& mode, const QString& text, Kind kind, const Ondrel::RectT<int>& before,
                const Ondrel::RectT<int>& after);

    int id() const override;
    bool mergeWith(const Ondrel::MemoryAwareUndoCommand* other) override;
    std::size_t memoryUsage() const override;
    void performUndo() override;
    void performRedo() override;

private:
    QPointer<CropMode> m_mode; // a step may outlive its mode, and then does nothing
    Kind m_kind;
    Ondrel::RectT<int> m_before;
    Ondrel::RectT<int> m_after;
};
