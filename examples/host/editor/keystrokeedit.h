#pragma once

#include <QKeySequence>
#include <QLineEdit>

namespace Host
{

// Shows the one stroke of keys that is pressed in it, at once. Tab and Escape keep what they do in every dialog.
class KeyStrokeEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit KeyStrokeEdit(QWidget* parent);
    QKeySequence keys() const { return m_keys; }
    void setKeys(const QKeySequence& keys);

Q_SIGNALS:
    void keysChanged();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QKeySequence m_keys;
};

} // namespace Host
