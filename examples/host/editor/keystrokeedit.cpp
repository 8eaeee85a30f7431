#include "keystrokeedit.h"

#include <QKeyEvent>

namespace Host
{
namespace
{

bool isModifier(int key)
{
    return key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt || key == Qt::Key_AltGr ||
           key == Qt::Key_Meta || key == Qt::Key_unknown;
}

// Shift is part of a character such as "?" already.
int modifiersOf(const QKeyEvent& event)
{
    Qt::KeyboardModifiers modifiers =
        event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const QString text = event.text();
    if (!text.isEmpty() && text[0].isPrint() && !text[0].isLetter() && !text[0].isSpace())
        modifiers &= ~Qt::KeyboardModifiers(Qt::ShiftModifier);
    return int(modifiers);
}

} // namespace

KeyStrokeEdit::KeyStrokeEdit(QWidget* parent)
    : QLineEdit(parent)
{
    setReadOnly(true);
    setPlaceholderText(tr("Press the keys"));
}

void KeyStrokeEdit::setKeys(const QKeySequence& keys)
{
    m_keys = keys;
    setText(keys.toString(QKeySequence::NativeText));
    Q_EMIT keysChanged();
}

// Keys are for this, not for whoever has them as a shortcut.
bool KeyStrokeEdit::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void KeyStrokeEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        event->ignore();
        return;
    }
    if (!isModifier(event->key()))
        setKeys(QKeySequence(event->key() | modifiersOf(*event)));
}

void KeyStrokeEdit::contextMenuEvent(QContextMenuEvent*) {}

} // namespace Host
