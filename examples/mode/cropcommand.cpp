#include "cropcommand.h"

#include "cropmode.h"

CropCommand::CropCommand(CropMode& mode, const QString& text, Kind kind, const Ondrel::RectT<int>& before,
                         const Ondrel::RectT<int>& after)
    : MemoryAwareUndoCommand(text)
    , m_mode(&mode)
    , m_kind(kind)
    , m_before(before)
    , m_after(after)
{
}

int CropCommand::id() const
{
    return m_kind;
}

bool CropCommand::mergeWith(const Ondrel::MemoryAwareUndoCommand* other)
{
    const auto* next = qobject_cast<const CropCommand*>(other);
    if (!next || !(next->m_before == m_after))
        return false;
    m_after = next->m_after;
    return true;
}

std::size_t CropCommand::memoryUsage() const
{
    return sizeof(*this) + std::size_t(text().capacity()) * sizeof(QChar);
}

void CropCommand::performUndo()
{
    if (m_mode)
        m_mode->setFrame(m_before);
}

void CropCommand::performRedo()
{
    if (m_mode)
        m_mode->setFrame(m_after);
}
