#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace Host
{

class KeyStrokeEdit;
class Shortcuts;

// Lists all commands with their shortcuts and changes them. A change holds at once.
class ShortcutsDialog : public QDialog
{
    Q_OBJECT
public:
    ShortcutsDialog(Shortcuts& shortcuts, QWidget* parent);

private Q_SLOTS:
    void fill();
    void filter(const QString& text);
    void showChosen();
    void checkKeys();
    void assign();
    void clear();
    void reset();

private:
    int chosen() const; // its number among the shortcuts' entries; -1 for none

    Shortcuts& m_shortcuts;
    QLineEdit* m_filter;
    QTableWidget* m_table;
    KeyStrokeEdit* m_keys;
    QPushButton* m_assign;
    QPushButton* m_clear;
    QPushButton* m_reset;
    QLabel* m_conflict;
};

} // namespace Host
