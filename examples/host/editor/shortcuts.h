#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>

#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace Host
{

// The shortcuts of a window's menus, as the user has them: kept in the settings under the object names of the actions,
// and only where they differ from those that the program began with. User-interface thread only.
class Shortcuts : public QObject
{
    Q_OBJECT
public:
    struct Entry {
        QAction* action;
        QString place; // the menus' titles, "View > Compare and proof"
        QString text;  // without marks
        QList<QKeySequence> initial;
    };

    explicit Shortcuts(QWidget& window);

    // Takes all actions of the menus as they are now, with their shortcuts as the initial ones, and gives them what the
    // settings have. An action without an object name gets one by its menu's and its initial shortcut, or its place
    // there. Actions of menus whose property "changing" is true come and go, and are left out.
    void takeMenus(const QMenuBar& bar);

    const std::vector<Entry>& entries() const { return m_entries; }
    // Who else answers to these keys, or would have to wait for more of them; null if no one.
    const Entry* holder(const QKeySequence& keys, const QAction* except) const;
    void assign(const QAction* action, const QList<QKeySequence>& keys); // whoever has them loses them
    void reset(const QAction* action);
    void resetAll();

public Q_SLOTS:
    void openDialog();

Q_SIGNALS:
    void changed();

private:
    void takeMenu(QMenu& menu, const QString& place);
    void take(QAction& action, const QString& place);
    void set(const Entry& entry, const QList<QKeySequence>& keys);

    QWidget& m_window;
    std::vector<Entry> m_entries;
};

} // namespace Host
